// A button that is an icon only. `help` is its tooltip and its name.
import QtQuick
import Corvane

AppButton {
    // Bare buttons have neither edge nor fill until the pointer is on them.
    property bool bare: false

    implicitWidth: implicitHeight
    horizontalPadding: 0
    fill: down ? Theme.pressed : showHovered ? Theme.controlHover : bare ? "transparent" : Theme.control
    edge: bare ? "transparent" : Theme.lineStrong
    disabledFill: bare ? "transparent" : Theme.inset
    disabledEdge: bare ? "transparent" : Theme.line
}
