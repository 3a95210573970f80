// A line between the parts of a layout. Layouts give whole pixels; of these it fills what a line is thick.
import QtQuick
import Corvane

Item {
    id: line

    property color color: Theme.line

    implicitWidth: 1
    implicitHeight: 1

    Rectangle {
        width: line.height > line.width ? Theme.hairline : line.width
        height: line.height > line.width ? line.height : Theme.hairline
        color: line.color
    }
}
