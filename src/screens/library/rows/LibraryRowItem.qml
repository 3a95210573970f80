// A row of the library: a mail, a thread, or a mail of the open thread above. Only plain items: a list that is
// scrolled makes and fills dozens of these a second.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

ListRow {
    id: row

    required property int index
    required property string kind
    required property bool open
    required property bool last
    required property string title
    required property var titlePieces
    required property string line
    required property var linePieces
    required property var snippetPieces
    required property bool tall
    required property int memberCount
    required property int attachmentCount
    required property string dateText
    required property string sizeText
    required property string placeSymbol
    required property string spokenName
    required selected

    readonly property bool isThread: kind === "thread"
    readonly property bool isMember: kind === "member"
    readonly property int textLeft: isMember ? 52 : 36
    readonly property int textRight: width - Theme.section
    readonly property int placeLeft: textRight - 84
    // Of a mail below its thread there is only one line of text: the place of the search, or the beginning.
    readonly property var secondPieces: isMember && snippetPieces.length > 0 ? snippetPieces : linePieces

    signal toggled

    // The whole text where the one at this height is elided, else empty.
    function elidedAt(y: real): string {
        const label = y >= 46 && tall ? snippet : y >= 26 ? (secondPieces.length > 0 ? secondMarked : lineLabel)
            : titlePieces.length > 0 ? titleMarked : titleLabel;
        return label.truncated ? label.text : "";
    }

    implicitHeight: tall ? Theme.rowSnippet : Theme.rowRegular
    separated: true
    Accessible.role: Accessible.ListItem
    Accessible.name: spokenName
    Accessible.selectable: true
    Accessible.selected: selected

    Rectangle {
        visible: row.isMember
        x: 19
        width: Theme.hairline
        height: parent.height
        color: Theme.line
    }
    DisclosureArrow {
        visible: row.isThread
        x: 12
        y: 8
        open: row.open
        onClicked: row.toggled()
    }
    Text {
        id: titleLabel
        x: row.textLeft
        y: 6
        width: Math.min(implicitWidth, row.titleRoom)
        height: Theme.bodyLine
        visible: row.titlePieces.length === 0
        verticalAlignment: Text.AlignVCenter
        text: row.title
        textFormat: Text.PlainText
        elide: Text.ElideRight
        maximumLineCount: 1
        color: Theme.text1
        font.pixelSize: Theme.bodySize
        font.weight: row.isThread ? Theme.strong : Theme.regular
    }
    readonly property real titleRoom: (countPill.visible ? dateLabel.x - countPill.width - Theme.space
        : attachmentCount > 0 ? paperclip.x : dateLabel.x) - textLeft - Theme.space
    MarkedText {
        id: titleMarked
        x: row.textLeft
        y: 6
        width: Math.min(implicitWidth, row.titleRoom)
        visible: row.titlePieces.length > 0
        pieces: row.titlePieces
        weight: row.isThread ? Theme.strong : Theme.regular
    }
    CountPill {
        id: countPill
        visible: row.isThread
        x: row.textLeft + (row.titlePieces.length > 0 ? titleMarked.width : titleLabel.width) + Theme.space
        y: 7
        text: row.memberCount
    }
    Symbol {
        id: paperclip
        x: attachmentLabel.x - width - 2
        y: 9
        visible: row.attachmentCount > 0
        size: 14
        name: "paperclip"
        color: row.captionColor
    }
    Text {
        id: attachmentLabel
        x: dateLabel.x - width - Theme.space
        y: 6
        height: Theme.bodyLine
        verticalAlignment: Text.AlignVCenter
        visible: row.attachmentCount > 0
        text: row.attachmentCount
        textFormat: Text.PlainText
        color: row.captionColor
        font.pixelSize: Theme.noteSize
    }
    Text {
        id: dateLabel
        x: row.textRight - width
        y: 6
        height: Theme.bodyLine
        verticalAlignment: Text.AlignVCenter
        text: row.dateText
        textFormat: Text.PlainText
        color: row.captionColor
        font.pixelSize: Theme.noteSize
    }

    Text {
        id: lineLabel
        x: row.textLeft
        y: 26
        width: row.placeLeft - x - Theme.space
        height: Theme.bodyLine
        visible: row.secondPieces.length === 0
        verticalAlignment: Text.AlignVCenter
        text: row.line
        textFormat: Text.PlainText
        elide: Text.ElideRight
        maximumLineCount: 1
        color: row.isMember ? row.captionColor : Theme.text2
        font.pixelSize: Theme.bodySize
    }
    MarkedText {
        id: secondMarked
        x: row.textLeft
        y: 26
        width: row.placeLeft - x - Theme.space
        visible: row.secondPieces.length > 0
        pieces: row.secondPieces
        color: Theme.text2
    }
    Symbol {
        x: row.placeLeft
        y: 29
        visible: row.placeSymbol.length > 0
        size: 14
        name: row.placeSymbol
        color: row.placeSymbol === "octagon-x" ? Theme.danger : row.captionColor
    }
    Text {
        x: row.textRight - width
        y: 26
        height: Theme.bodyLine
        verticalAlignment: Text.AlignVCenter
        text: row.sizeText
        textFormat: Text.PlainText
        color: row.captionColor
        font.pixelSize: Theme.noteSize
    }
    MarkedText {
        id: snippet
        x: row.textLeft
        y: 46
        width: row.textRight - x
        visible: row.tall
        pieces: row.snippetPieces
        color: row.captionColor
    }
}
