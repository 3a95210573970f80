// On or off.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.Switch {
    id: control

    property bool showFocus: activeFocus && KeyboardFocus.inUse

    implicitWidth: 34
    implicitHeight: 20
    focusPolicy: Qt.TabFocus
    hoverEnabled: true

    indicator: Rectangle {
        implicitWidth: 34
        implicitHeight: 20
        radius: 10
        color: !control.enabled ? Theme.inset : control.checked ? Theme.accentFill : Theme.controlLine

        Rectangle {
            x: control.checked ? parent.width - width - 2 : 2
            y: 2
            width: 16
            height: 16
            radius: 8
            color: control.enabled ? Theme.textOnAccent : Theme.disabled
        }
        FocusRing {
            shown: control.showFocus
            cornerRadius: 10
        }
    }
}
