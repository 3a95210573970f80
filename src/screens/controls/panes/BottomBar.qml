// The bar at the foot of a screen.
import QtQuick
import Corvane

FocusGroup {
    id: bar

    property int margin: Theme.margin
    default property alias content: holder.data

    implicitHeight: Theme.bottomBarHeight

    Rectangle {
        anchors.fill: parent
        color: Theme.page
    }
    Rectangle {
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    Item {
        id: holder
        anchors.fill: parent
        anchors.topMargin: Theme.hairline
        anchors.leftMargin: bar.margin
        anchors.rightMargin: bar.margin
    }
}
