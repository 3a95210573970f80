// The arrow of a row that opens.
import QtQuick
import Corvane

Item {
    id: arrow

    property bool open: false

    signal clicked

    implicitWidth: 16
    implicitHeight: 16

    Symbol {
        anchors.fill: parent
        size: 16
        name: "chevron-right"
        color: Theme.text3
        rotation: arrow.open ? 90 : 0

        Behavior on rotation {
            NumberAnimation {
                duration: Theme.changeDuration
            }
        }
    }
    MouseArea {
        anchors.centerIn: parent
        width: Theme.minimumTarget
        height: Theme.minimumTarget
        onClicked: arrow.clicked()
    }
}
