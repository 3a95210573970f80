// A value of a filter: its box, its name, its count. The whole row takes the pointer.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.CheckBox {
    id: row

    required property string title
    required property bool ticked
    required property string countText
    // Nothing of it is left by the other filters.
    readonly property bool isEmpty: countText === "0"

    checkState: ticked ? Qt.Checked : Qt.Unchecked
    nextCheckState: () => checkState
    implicitHeight: Theme.minimumTarget
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.name: countText.length > 0 ? title + "，" + countText + " 封" : title
    Accessible.onToggleAction: clicked()

    TickBox {
        id: box
        anchors.verticalCenter: parent.verticalCenter
        tick: row.ticked ? 1 : 0
        showHovered: row.hovered
        showFocus: row.activeFocus && KeyboardFocus.inUse
        focusPolicy: Qt.NoFocus
        Accessible.ignored: true
        onClicked: row.clicked()
    }
    AppText {
        anchors.left: box.right
        anchors.leftMargin: Theme.space
        anchors.right: countLabel.left
        anchors.rightMargin: Theme.space
        anchors.verticalCenter: parent.verticalCenter
        text: row.title
        color: row.isEmpty ? Theme.text3 : Theme.text1
        // Addresses end alike, and differ before that; accounts of one name differ at their ends.
        elide: row.title.indexOf(" ") < 0 ? Text.ElideRight : Text.ElideMiddle
        Accessible.ignored: true
    }
    AppText {
        id: countLabel
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: row.countText
        role: AppText.Note
        color: row.isEmpty ? Theme.disabled : Theme.text3
        Accessible.ignored: true
    }
}
