// A row of a menu: a tick's place, the words, the key at the right.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.MenuItem {
    id: row

    property bool marked: checked
    property string keys: ""

    implicitWidth: 24 + label.implicitWidth + (keys.length > 0 ? keyLabel.implicitWidth + 24 : 0) + 24
    implicitHeight: Theme.controlHeightPane
    hoverEnabled: true
    // The key that opened the menu is held a moment too long.
    Keys.onReturnPressed: event => event.accepted = event.isAutoRepeat
    Keys.onEnterPressed: event => event.accepted = event.isAutoRepeat

    contentItem: Item {
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            x: 8
            visible: row.marked
            size: 14
            name: "check"
            color: Theme.accent
        }
        AppText {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            x: 28
            width: parent.width - x - (row.keys.length > 0 ? keyLabel.implicitWidth + 24 : 12)
            text: row.text
            color: row.enabled ? Theme.text1 : Theme.disabled
            Accessible.ignored: true
        }
        AppText {
            id: keyLabel
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: 12
            text: row.keys
            role: AppText.Note
            color: Theme.text3
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        anchors.fill: parent
        anchors.leftMargin: Theme.half
        anchors.rightMargin: Theme.half
        radius: Theme.radiusInner
        color: row.down ? Theme.pressed : row.highlighted && row.enabled ? Theme.selection : "transparent"
    }
}
