// A button that is words only, like a link in a line of text.
import QtQuick
import Corvane

AppButton {
    horizontalPadding: 6
    fill: down ? Theme.pressed : "transparent"
    edge: "transparent"
    disabledFill: "transparent"
    disabledEdge: "transparent"
    labelColor: Theme.accent
    symbolColor: Theme.accent
    underlined: showHovered

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
}
