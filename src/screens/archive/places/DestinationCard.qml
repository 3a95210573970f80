// One place for the archive.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

T.AbstractButton {
    id: card

    required property string name
    required property string detail
    required property string symbol
    required property bool chosen
    required property bool connected

    implicitHeight: 60
    implicitWidth: 140
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.RadioButton
    Accessible.name: name + "，" + detail
    Accessible.checkable: true
    Accessible.checked: chosen

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        radius: Theme.radiusLarge
        color: card.chosen && card.connected ? Theme.accentBackground : !card.connected ? Theme.page
            : card.down ? Theme.pressed : card.hovered ? Theme.controlHover : Theme.control
        border.width: card.chosen ? Theme.ring : Theme.hairline
        border.color: card.chosen ? Theme.accent : Theme.lineStrong

        FocusRing {
            shown: card.activeFocus && KeyboardFocus.inUse
            cornerRadius: Theme.radiusLarge
        }
    }
    contentItem: Item {
        Symbol {
            x: 13
            anchors.verticalCenter: parent.verticalCenter
            size: 20
            name: card.symbol
            color: !card.connected ? Theme.text3 : card.chosen ? Theme.accent : Theme.text2
        }
        AppText {
            x: 43
            y: 11
            width: parent.width - x - 12
            text: card.name
            font.weight: Theme.medium
            color: card.connected ? Theme.text1 : Theme.text3
            Accessible.ignored: true
        }
        AppText {
            x: 43
            y: 31
            width: parent.width - x - 12
            text: card.detail
            role: AppText.Note
            elide: Text.ElideMiddle
            color: card.connected ? Theme.text3 : Theme.attention
            Accessible.ignored: true
        }
    }
}
