// The ring around what has the keyboard: outside of controls, inside of rows and fields.
import QtQuick
import Corvane

Rectangle {
    property bool shown: false
    property int cornerRadius: Theme.radiusSmall
    property bool inside: false
    readonly property int reach: inside ? 0 : Theme.ring + 1

    anchors.fill: parent
    anchors.margins: -reach
    visible: shown
    color: "transparent"
    border.width: Theme.ring
    border.color: Theme.accent
    radius: cornerRadius + reach
}
