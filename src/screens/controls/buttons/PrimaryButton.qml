// The one button of a screen or sheet that does what the user came for.
import QtQuick
import Corvane

AppButton {
    implicitHeight: Theme.controlHeightPrimary
    horizontalPadding: 20
    fill: down ? Theme.accentFillPressed : showHovered ? Theme.accentFillHover : Theme.accentFill
    edge: fill
    labelColor: Theme.textOnAccent
    symbolColor: Theme.textOnAccent
    labelWeight: Theme.strong
}
