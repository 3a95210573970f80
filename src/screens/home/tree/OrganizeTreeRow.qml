// One account, year or folder of the tree.
import QtQuick
import Corvane

ListRow {
    id: row

    required property int level
    required property string title
    required property string count
    required property string size
    required property real share
    required property int tick
    required property bool expanded
    required property bool expandable
    required property string tickHelp
    required property string expandHelp
    required property string accessibleText
    required selected
    readonly property bool isAccount: level === OrganizeTreeModel.Account
    readonly property bool isFolder: level === OrganizeTreeModel.Folder
    readonly property int indent: isAccount ? 8 : isFolder ? 8 + 16 + Theme.treeFolderIndent : 8 + Theme.treeYearIndent
    readonly property real measure: Math.min(width, Theme.treeMeasure)
    readonly property bool held: down || box.down

    signal tickPressed
    signal expandPressed

    implicitHeight: isAccount ? Theme.treeAccountRow : isFolder ? Theme.treeFolderRow : Theme.treeYearRow
    restColor: isAccount ? Theme.page : Theme.surface
    onDoubleClicked: if (expandable) expandPressed()

    Accessible.role: Accessible.TreeItem
    Accessible.name: accessibleText
    Accessible.checkable: true
    Accessible.checked: tick === OrganizeTreeModel.Ticked
    Accessible.checkStateMixed: tick === OrganizeTreeModel.Mixed
    Accessible.onToggleAction: tickPressed()

    Rectangle {
        visible: row.isAccount
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    Rectangle {
        visible: row.isAccount
        anchors.bottom: parent.bottom
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    TickBox {
        id: box
        objectName: "tickBox"
        x: row.indent
        anchors.verticalCenter: parent.verticalCenter
        focusPolicy: Qt.NoFocus
        tick: row.tick
        name: row.title + "，" + row.tickHelp
        onClicked: row.tickPressed()

        readonly property string explanation: hovered ? row.tickHelp : ""
        onExplanationChanged: ToolTips.explain(box, explanation)
    }
    DisclosureArrow {
        id: arrow
        objectName: "arrow"
        x: row.indent + 24
        anchors.verticalCenter: parent.verticalCenter
        visible: row.expandable
        open: row.expanded
        onClicked: row.expandPressed()

        HoverHandler {
            id: arrowPointer
        }
        readonly property string explanation: arrowPointer.hovered ? row.expandHelp : ""
        onExplanationChanged: ToolTips.explain(arrow, explanation)
    }
    AppText {
        x: row.indent + 50
        anchors.verticalCenter: parent.verticalCenter
        width: row.measure - x - 316
        text: row.title
        elide: row.isAccount ? Text.ElideMiddle : Text.ElideRight
        font.weight: row.isAccount ? Theme.strong : Theme.regular
        Accessible.ignored: true
    }
    AppText {
        anchors.right: parent.left
        anchors.rightMargin: 228 - row.measure
        anchors.verticalCenter: parent.verticalCenter
        text: row.count
        font.weight: row.isAccount ? Theme.strong : Theme.regular
        Accessible.ignored: true
    }
    AppText {
        anchors.right: parent.left
        anchors.rightMargin: 132 - row.measure
        anchors.verticalCenter: parent.verticalCenter
        text: row.size
        font.weight: row.isAccount ? Theme.strong : Theme.regular
        color: row.isAccount ? Theme.text1 : Theme.text2
        Accessible.ignored: true
    }
    SizeBar {
        x: row.measure - 124
        anchors.verticalCenter: parent.verticalCenter
        visible: !row.isAccount
        width: Math.min(row.width - x - 12, Theme.treeBarMeasure)
        fraction: row.share
    }
}
