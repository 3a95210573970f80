// Marks the first place of a searched text in a line of plain text, behind the letters. The line stands beside it in the
// same parent; what is elided has no mark.
import QtQuick
import Corvane

Rectangle {
    id: mark

    required property Text line
    property string query: ""
    readonly property int at: query.length > 0 ? line.text.toLowerCase().indexOf(query) : -1
    readonly property real start: at > 0 ? metrics.advanceWidth(line.text.substring(0, at)) : 0

    visible: at >= 0 && start + width <= line.width + 1
    x: line.x + start
    y: line.y + 1
    width: at >= 0 ? metrics.advanceWidth(line.text.substring(at, at + query.length)) : 0
    height: line.height - 2
    radius: 2
    color: Theme.searchMark

    FontMetrics {
        id: metrics
        font: mark.line.font
    }
}
