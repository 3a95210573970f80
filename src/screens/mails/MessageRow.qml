// A message in the list: state, sender and date, subject and attachments, preview and size. Only plain items: a
// list that is scrolled makes and fills dozens of these a second.
import QtQuick
import Corvane

ListRow {
    id: row

    required property int index
    required property string sender
    required property string subject
    required property string preview
    required property string dateText
    required property string sizeText
    required property int attachmentCount
    required property bool archived
    // Why it isn't archived; stands in the place of the preview.
    required property string trouble
    required property string troubleSymbol
    required property string troubleTone
    required property string spokenName
    required selected
    // What the list was searched for.
    property string query: ""

    readonly property color troubleColor: troubleTone.length > 0 ? Theme.toneText(troubleTone) : captionColor
    readonly property int textLeft: 38
    readonly property int textRight: width - Theme.section

    // The whole text where the one at this height is elided, else empty.
    function elidedAt(y: real): string {
        const label = y < 28 ? senderLabel : y < 48 ? subjectLabel : previewLabel;
        return label.truncated ? label.text : "";
    }

    implicitHeight: Theme.rowFull
    separated: true
    Accessible.role: Accessible.ListItem
    Accessible.name: spokenName
    Accessible.selectable: true
    Accessible.selected: selected

    Symbol {
        x: 12
        y: 10
        size: 16
        name: row.troubleSymbol.length > 0 ? row.troubleSymbol : row.archived ? "circle-check" : "circle-dashed"
        color: row.troubleSymbol.length > 0 ? row.troubleColor : row.archived ? Theme.safe : Theme.attention
    }

    FoundMark {
        line: senderLabel
        query: row.query
    }
    Text {
        id: senderLabel
        x: row.textLeft
        horizontalAlignment: Text.AlignLeft
        y: 8
        width: dateLabel.x - x - Theme.space
        height: Theme.bodyLine
        verticalAlignment: Text.AlignVCenter
        text: row.sender
        textFormat: Text.PlainText
        elide: row.sender.indexOf("@") > 0 ? Text.ElideMiddle : Text.ElideRight
        maximumLineCount: 1
        color: Theme.text1
        font.pixelSize: Theme.bodySize
        font.weight: Theme.strong
    }
    Text {
        id: dateLabel
        x: row.textRight - width
        y: 8
        height: Theme.bodyLine
        verticalAlignment: Text.AlignVCenter
        text: row.dateText
        textFormat: Text.PlainText
        color: row.captionColor
        font.pixelSize: Theme.noteSize
    }

    FoundMark {
        line: subjectLabel
        query: row.query
    }
    Text {
        id: subjectLabel
        x: row.textLeft
        horizontalAlignment: Text.AlignLeft
        y: 28
        width: (row.attachmentCount > 0 ? paperclip.x - Theme.space : row.textRight) - x
        height: Theme.bodyLine
        verticalAlignment: Text.AlignVCenter
        text: row.subject
        textFormat: Text.PlainText
        elide: Text.ElideRight
        maximumLineCount: 1
        color: Theme.text1
        font.pixelSize: Theme.bodySize
    }
    Symbol {
        id: paperclip
        x: attachmentLabel.x - width - 2
        y: 31
        visible: row.attachmentCount > 0
        size: 14
        name: "paperclip"
        color: row.captionColor
    }
    Text {
        id: attachmentLabel
        x: row.textRight - width
        y: 28
        height: Theme.bodyLine
        verticalAlignment: Text.AlignVCenter
        visible: row.attachmentCount > 0
        text: row.attachmentCount
        textFormat: Text.PlainText
        color: row.captionColor
        font.pixelSize: Theme.noteSize
    }

    FoundMark {
        line: previewLabel
        query: row.query
    }
    Text {
        id: previewLabel
        x: row.textLeft
        horizontalAlignment: Text.AlignLeft
        y: 48
        width: sizeLabel.x - x - Theme.space
        height: Theme.bodyLine
        verticalAlignment: Text.AlignVCenter
        text: row.trouble.length > 0 ? row.trouble : row.preview
        textFormat: Text.PlainText
        elide: Text.ElideRight
        maximumLineCount: 1
        color: row.trouble.length > 0 ? row.troubleColor : row.captionColor
        font.pixelSize: Theme.bodySize
    }
    Text {
        id: sizeLabel
        x: row.textRight - width
        y: 48
        height: Theme.bodyLine
        verticalAlignment: Text.AlignVCenter
        text: row.sizeText
        textFormat: Text.PlainText
        color: row.captionColor
        font.pixelSize: Theme.noteSize
    }
}
