// A row of an account's sheet: a year, one of its folders, a mail, or the mail without a date.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

ListRow {
    id: row

    required property int level
    required property var title
    required property bool expanded
    required property var status
    required property var present
    required property var removed
    required property var freeable
    required property var sender
    required property var dateText
    required property var line
    required property var canLocate
    required property var help
    required property var spokenName
    required selected
    readonly property bool isYear: level === AccountRowsModel.Year
    readonly property bool isFolder: level === AccountRowsModel.Folder
    readonly property bool isEntry: level === AccountRowsModel.Entry
    readonly property bool expandable: isYear || isFolder
    readonly property int indent: isYear ? 12 : 42

    signal locatePressed

    implicitHeight: isYear ? 36 : isEntry ? 54 : isFolder ? 32 : 44
    restColor: isYear ? "transparent" : Theme.page
    Accessible.role: Accessible.TreeItem
    Accessible.name: spokenName ?? ""
    Accessible.onPressAction: clicked(Qt.NoModifier)

    Rectangle {
        visible: !row.isFolder
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    DisclosureArrow {
        id: arrow
        x: row.indent
        anchors.verticalCenter: parent.verticalCenter
        visible: row.expandable
        open: row.expanded
        onClicked: row.clicked(Qt.NoModifier)

        HoverHandler {
            id: arrowPointer
        }
        readonly property string explanation: arrowPointer.hovered ? row.help ?? "" : ""
        onExplanationChanged: ToolTips.explain(arrow, explanation)
    }
    Symbol {
        x: row.indent + 22
        anchors.verticalCenter: parent.verticalCenter
        visible: row.isFolder
        size: 14
        name: "folder"
        color: Theme.text3
    }
    AppText {
        x: row.isYear ? 42 : row.isFolder ? 84 : row.isEntry ? 84 : 42
        y: row.isEntry ? 7 : (row.height - height) / 2
        width: row.isYear ? 84 : row.isFolder ? chip.x - x - 12 : row.isEntry ? senderLabel.x - x - 12
            : row.width - x - 16
        text: row.title ?? ""
        font.weight: row.isYear ? Theme.medium : Theme.regular
        color: row.isYear || row.isFolder || row.isEntry ? Theme.text1 : Theme.text2
        Accessible.ignored: true
    }
    Chip {
        id: chip
        x: row.isYear ? 130 : row.width - 324 - width
        anchors.verticalCenter: parent.verticalCenter
        visible: row.isYear || (row.isFolder && text.length > 0)
        text: row.status?.label ?? ""
        symbol: row.status?.symbol ?? ""
        kind: row.status?.tone ?? ""
    }
    Repeater {
        model: row.expandable ? 3 : 0
        delegate: AppText {
            required property int index
            readonly property var figure: index === 0 ? row.present : index === 1 ? row.removed : row.freeable
            x: row.width - (index === 0 ? 232 : index === 1 ? 128 : 16) - width
            y: (row.height - height) / 2
            text: figure ?? ""
            font.weight: index === 2 && row.isYear && text !== "—" ? Theme.strong : Theme.regular
            color: text === "—" ? Theme.text3 : index === 1 ? Theme.text2 : Theme.text1
            Accessible.ignored: true
        }
    }
    AppText {
        id: senderLabel
        x: dateLabel.x - width - 12
        y: 7
        width: Math.min(implicitWidth, 160)
        visible: row.isEntry
        text: row.sender ?? ""
        color: Theme.text2
        Accessible.ignored: true
    }
    AppText {
        id: dateLabel
        x: row.width - 60 - width
        y: 8
        visible: row.isEntry
        text: row.dateText ?? ""
        role: AppText.Note
        color: row.captionColor
        Accessible.ignored: true
    }
    IconButton {
        objectName: "locateButton"
        x: row.width - 16 - width + 7
        y: 3
        visible: row.isEntry && (row.canLocate ?? false)
        implicitHeight: Theme.minimumTarget
        bare: true
        symbol: "square-arrow-out-up-right"
        symbolColor: Theme.accent
        help: "在 Apple Mail 中打开这封邮件，便于核对或手动删除。"
        onClicked: row.locatePressed()
    }
    Symbol {
        x: 84
        y: 30
        visible: row.isEntry
        size: 14
        name: row.line?.symbol ?? ""
        color: stateLabel.color
    }
    AppText {
        id: stateLabel
        x: 104
        y: 28
        width: row.width - x - 16
        visible: row.isEntry
        text: row.line?.text ?? ""
        role: AppText.Note
        color: row.line?.tone ? Theme.toneText(row.line.tone) : Theme.text2
        Accessible.ignored: true
    }
}
