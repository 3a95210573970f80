// A filter that is on. Pressing it, or its ×, takes it away.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.AbstractButton {
    id: chip

    property bool showHovered: hovered
    property bool showFocus: activeFocus && KeyboardFocus.inUse

    implicitWidth: contentItem.implicitWidth
    implicitHeight: Theme.chipHeight
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Button
    Accessible.name: "移除筛选：" + text
    Keys.onReturnPressed: clicked()
    Keys.onDeletePressed: clicked()

    contentItem: Item {
        implicitWidth: label.implicitWidth + 23

        AppText {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - 23
            text: chip.text
            role: AppText.Note
            color: Theme.accent
            leftPadding: 7
            Accessible.ignored: true
        }
        Symbol {
            anchors.right: parent.right
            anchors.rightMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            size: 13
            name: "x"
            color: Theme.accent
        }
    }
    background: Rectangle {
        radius: Theme.radiusInner
        color: chip.down ? Theme.pressed : chip.showHovered ? Theme.controlHover : Theme.accentBackground
        border.color: Theme.lineStrong

        FocusRing {
            shown: chip.showFocus
            cornerRadius: Theme.radiusInner
        }
    }
}
