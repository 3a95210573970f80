// The head of a list: what its columns are.
import QtQuick
import Corvane

Rectangle {
    default property alias content: holder.data

    implicitHeight: Theme.tableHeadHeight
    color: Theme.page

    Item {
        id: holder
        anchors.fill: parent
        anchors.bottomMargin: Theme.hairline
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
}
