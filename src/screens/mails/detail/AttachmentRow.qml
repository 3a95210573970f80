// One attachment: a double click or Return opens it, the button at its end says what else there is. One that isn't on
// this machine is only named.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.AbstractButton {
    id: row

    required property string name
    required property string sizeText
    required property string symbol
    required property bool found

    signal opened
    signal menuRequested(Item item)

    enabled: found
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: name + "，" + sizeText
    Accessible.focusable: found
    Accessible.onPressAction: row.opened()
    onDoubleClicked: row.opened()
    Keys.onPressed: event => {
        event.accepted = !event.isAutoRepeat;
        if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            row.opened();
        else if (event.key === Qt.Key_Menu || (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier))
            row.menuRequested(more);
        else
            event.accepted = false;
    }

    background: Rectangle {
        color: row.down ? Theme.pressed : row.hovered ? Theme.hover : "transparent"

        Rectangle {
            width: parent.width
            height: Theme.hairline
            color: Theme.line
        }
        FocusRing {
            shown: row.activeFocus && KeyboardFocus.inUse
            inside: true
        }
    }
    contentItem: Item {
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            x: 12
            size: 18
            name: row.symbol
            color: row.found ? Theme.text2 : Theme.text3
        }
        AppText {
            anchors.verticalCenter: parent.verticalCenter
            x: 42
            width: sizeLabel.x - x - 12
            text: row.name
            elide: Text.ElideMiddle
            color: row.found ? Theme.text1 : Theme.text2
            Accessible.ignored: true
        }
        AppText {
            id: sizeLabel
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: row.found ? 36 : 12
            text: row.sizeText
            color: row.found ? Theme.text2 : Theme.text3
            Accessible.ignored: true
        }
        IconButton {
            id: more
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: 4
            implicitHeight: Theme.minimumTarget
            visible: row.found
            bare: true
            focusPolicy: Qt.NoFocus
            symbol: "ellipsis"
            help: "打开、存到「下载」"
            onClicked: row.menuRequested(more)
        }
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: row.menuRequested(more)
    }
}
