// The one window of the program.
import QtQuick
import QtQuick.Window
import Corvane

Window {
    id: root

    required property WindowModel app

    title: "Corvane"
    width: Theme.windowWidth
    height: Theme.windowHeight
    minimumWidth: Theme.windowMinimumWidth
    minimumHeight: Theme.windowMinimumHeight
    color: Theme.surface
    visible: true

    ContentView {
        anchors.fill: parent
        app: root.app
    }
}
