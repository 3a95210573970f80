// The scrollbar of every list and pane.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.ScrollBar {
    id: bar

    implicitWidth: orientation === Qt.Vertical ? 10 : 40
    implicitHeight: orientation === Qt.Vertical ? 40 : 10
    padding: 2
    // Long enough to be taken hold of, also beside short lists.
    minimumSize: Math.min(0.5, Theme.minimumTarget / Math.max(1, orientation === Qt.Vertical ? height : width))
    visible: size < 1.0 && policy !== T.ScrollBar.AlwaysOff
    hoverEnabled: true

    // Thin and quiet until the pointer comes.
    contentItem: Item {
        readonly property int inset: bar.pressed || bar.hovered ? 0 : 2
        implicitWidth: 6
        implicitHeight: 6

        Rectangle {
            anchors.fill: parent
            anchors.leftMargin: bar.orientation === Qt.Vertical ? parent.inset : 0
            anchors.topMargin: bar.orientation === Qt.Vertical ? 0 : parent.inset
            radius: 3
            color: bar.pressed ? Theme.text3 : bar.hovered ? Theme.controlLine : Theme.lineStrong
        }
    }
}
