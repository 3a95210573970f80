// What the columns of the tree are, and the tick of all rows.
import QtQuick
import Corvane

TableHead {
    id: head

    required property OrganizeTreeModel tree

    color: "transparent"

    TickBox {
        id: all
        objectName: "tickAllBox"
        x: 8
        anchors.verticalCenter: parent.verticalCenter
        focusPolicy: Qt.NoFocus
        tick: head.tree.tickState
        name: head.tree.tickHelp
        onClicked: head.tree.toggleAllTicks()

        readonly property string explanation: hovered ? head.tree.tickHelp : ""
        onExplanationChanged: ToolTips.explain(all, explanation)
    }
    AppText {
        x: 58
        anchors.verticalCenter: parent.verticalCenter
        text: "邮箱、年份与文件夹"
        role: AppText.Note
        color: Theme.text3
    }
    AppText {
        anchors.right: size.left
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        width: 76
        horizontalAlignment: Text.AlignRight
        text: "封数"
        role: AppText.Note
        color: Theme.text3
    }
    AppText {
        id: size
        anchors.right: parent.left
        anchors.rightMargin: 132 - Math.min(head.width, Theme.treeMeasure)
        anchors.verticalCenter: parent.verticalCenter
        width: 88
        horizontalAlignment: Text.AlignRight
        text: "体积"
        role: AppText.Note
        color: Theme.text3
    }
}
