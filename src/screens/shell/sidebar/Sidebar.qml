// The sidebar: the places of the window above, where the archive lies and what is running below.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Window
import Corvane

Rectangle {
    id: sidebar

    required property WindowModel app
    property string place: ""
    property bool low: false
    readonly property bool windowActive: Window.active

    signal placeChosen(string key)
    signal placesRequested
    signal importRequested
    signal exportRequested

    objectName: "sidebar"
    color: Theme.sidebar
    Accessible.role: Accessible.PageTabList
    Accessible.name: "边栏"

    FocusGroup {
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: 8
        anchors.topMargin: 12
        anchors.rightMargin: 9
        height: items.height
        horizontal: false

        Column {
            id: items
            width: parent.width
            spacing: 2

            Repeater {
                model: sidebar.app.sidebar
                delegate: SidebarItem {
                    required property string key
                    required property string title
                    required symbol
                    required figure

                    objectName: "place-" + key
                    width: items.width
                    implicitHeight: sidebar.low ? Theme.sidebarItemHeightLow : Theme.sidebarItemHeight
                    text: title
                    chosen: sidebar.place === key
                    windowActive: sidebar.windowActive
                    focus: chosen
                    onClicked: sidebar.placeChosen(key)
                }
            }
        }
    }
    SidebarFoot {
        anchors.bottom: parent.bottom
        width: parent.width - 1
        destination: sidebar.app.destination
        activity: sidebar.app.activity
        archive: sidebar.app.archive
        onPlacesRequested: sidebar.placesRequested()
        onImportRequested: sidebar.importRequested()
        onExportRequested: sidebar.exportRequested()
        onPlaceChosen: key => {
            // Work over whole archives is shown in their sheet, not on a screen.
            if (key === "places")
                return sidebar.placesRequested();
            sidebar.app.archive.background.bringToFront();
            sidebar.placeChosen(key);
        }
    }
    Rectangle {
        anchors.right: parent.right
        width: Theme.hairline
        height: parent.height
        color: Theme.line
    }
}
