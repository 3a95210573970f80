// The frame around the rows of a group.
import QtQuick
import Corvane

Rectangle {
    default property alias rows: frameRows.data

    implicitHeight: frameRows.height + 2
    radius: Theme.radiusLarge
    color: "transparent"
    border.color: Theme.line

    Column {
        id: frameRows
        x: 1
        y: 1
        width: parent.width - 2
    }
}
