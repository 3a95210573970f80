// The body of a sheet in which a folder is chosen: its path, the places to begin at, its folders.
import QtQuick
import QtQuick.Layouts
import Corvane

ColumnLayout {
    id: browser

    required property FolderPicker picker
    // Said where the picker has nothing to say.
    property string errorText: ""
    property string placeholder: "输入文件夹的路径"

    // Somebody has typed a path, and wants to go there.
    signal pathTyped(string path)

    function enterFolders() {
        folders.forceActiveFocus(Qt.OtherFocusReason);
    }

    spacing: 12

    RowLayout {
        Layout.fillWidth: true
        spacing: 8

        IconButton {
            symbol: "chevron-up"
            help: "上一级文件夹"
            enabled: browser.picker.canGoUp
            onClicked: browser.picker.goUp()
        }
        AppTextField {
            id: path
            objectName: "browsedPath"
            Layout.fillWidth: true
            name: "文件夹的路径"
            placeholderText: browser.placeholder
            Keys.onReturnPressed: browser.pathTyped(text)
            Keys.onEnterPressed: browser.pathTyped(text)
            Keys.onDownPressed: folders.forceActiveFocus(Qt.TabFocusReason)
        }
    }
    AppText {
        Layout.fillWidth: true
        visible: text.length > 0
        text: browser.picker.errorText.length > 0 ? browser.picker.errorText : browser.errorText
        color: Theme.danger
        Accessible.role: Accessible.AlertMessage
    }
    Rectangle {
        Layout.fillWidth: true
        Layout.fillHeight: true
        radius: Theme.radiusLarge
        color: Theme.surface
        border.color: Theme.line

        Rectangle {
            x: 1
            y: 1
            width: places.width
            height: parent.height - 2
            radius: Theme.radiusLarge - 1
            color: Theme.page
        }
        FolderPlaces {
            id: places
            x: 1
            y: 1
            width: 184
            height: parent.height - 2
            picker: browser.picker
        }
        Rectangle {
            x: places.width
            width: Theme.hairline
            height: parent.height
            color: Theme.line
        }
        FolderList {
            id: folders
            x: places.width + 1
            // Clear of the round corners, and of the folder that would be made.
            y: Theme.half + proposedHeight
            width: parent.width - x - 1
            height: parent.height - Theme.half - y
            picker: browser.picker
        }
    }

    Connections {
        target: browser.picker
        function onListed() {
            path.text = browser.picker.pathText;
        }
    }
}
