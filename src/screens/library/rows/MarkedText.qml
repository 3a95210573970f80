// A line of text in pieces, the marked ones on the colour of a search. Cut at its end.
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

    implicitHeight: Theme.bodyLine
    implicitWidth: row.width
    clip: row.width > width

    Row {
        id: row
        Repeater {
            model: line.pieces
            delegate: Item {
                id: piece
                required property var modelData
                width: label.width
                height: Theme.bodyLine

                Rectangle {
                    anchors.fill: parent
                    anchors.topMargin: 1
                    anchors.bottomMargin: 1
                    visible: piece.modelData.marked
                    radius: Theme.radiusBar
                    color: Theme.searchMark
                }
                Text {
                    id: label
                    height: parent.height
                    verticalAlignment: Text.AlignVCenter
                    text: piece.modelData.text
                    textFormat: Text.PlainText
                    color: piece.modelData.marked ? Theme.text1 : line.color
                    font.pixelSize: line.pixelSize
                    font.weight: line.weight
                }
            }
        }
    }
}
