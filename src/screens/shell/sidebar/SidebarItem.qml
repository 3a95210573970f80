// One place of the sidebar: icon, title, a figure at the right.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.TabButton {
    id: item

    property string symbol: ""
    property string figure: ""
    property bool chosen: false
    property bool windowActive: true
    property bool showHovered: hovered
    property bool showFocus: activeFocus && KeyboardFocus.inUse

    implicitHeight: Theme.sidebarItemHeight
    checkable: false
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.name: figure.length > 0 ? text + "，" + figure : text
    Accessible.selectable: true
    Accessible.selected: chosen
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        Symbol {
            id: icon
            x: 10
            anchors.verticalCenter: parent.verticalCenter
            size: 18
            name: item.symbol
            color: item.chosen && item.windowActive ? Theme.accent : Theme.text2
        }
        AppText {
            anchors.verticalCenter: parent.verticalCenter
            x: 38
            width: parent.width - x - figureText.width - 18
            text: item.text
            font.weight: item.chosen ? Theme.strong : Theme.regular
            Accessible.ignored: true
        }
        AppText {
            id: figureText
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: 10
            text: item.figure
            role: AppText.Note
            font.weight: item.chosen ? Theme.medium : Theme.regular
            color: item.chosen ? Theme.text2 : Theme.text3
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.radiusSmall
        color: item.chosen ? (item.windowActive ? Theme.selection : Theme.selectionInactive)
            : item.down ? Theme.pressed : item.showHovered ? Theme.sideHover : "transparent"

        FocusRing {
            shown: item.showFocus
        }
    }
}
