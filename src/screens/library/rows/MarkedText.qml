// A line of text in pieces, the marked ones on the colour of a search. Elided at its end.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

Item {
    id: line

    // Maps with `text` and `marked`.
    property var pieces: []
    property color color: Theme.text1
    property int pixelSize: Theme.bodySize
    property int weight: Theme.regular
    readonly property string text: whole.text
    readonly property bool truncated: implicitWidth > width

    implicitHeight: Theme.bodyLine
    implicitWidth: Math.ceil(whole.advanceWidth) + 1

    TextMetrics {
        id: whole
        text: line.pieces.map(piece => piece.text).join("")
        font.pixelSize: line.pixelSize
        font.weight: line.weight
    }
    Row {
        Repeater {
            model: line.pieces
            delegate: Item {
                id: piece
                required property var modelData
                width: Math.max(0, Math.min(label.implicitWidth, line.width - x))
                height: Theme.bodyLine

                Rectangle {
                    y: 1
                    width: Math.min(parent.width, label.contentWidth)
                    height: parent.height - 2
                    visible: piece.modelData.marked
                    radius: Theme.radiusBar
                    color: Theme.searchMark
                }
                Text {
                    id: label
                    width: parent.width
                    height: parent.height
                    verticalAlignment: Text.AlignVCenter
                    text: piece.modelData.text
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    color: piece.modelData.marked ? Theme.text1 : line.color
                    font.pixelSize: line.pixelSize
                    font.weight: line.weight
                }
            }
        }
    }
}
