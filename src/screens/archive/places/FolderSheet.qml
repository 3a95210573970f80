// Chooses the folder of the archive: places at the left, the folders of one folder at the right, its path above them.
import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property FolderPicker picker
    readonly property var choice: picker.choice
    // A name is being typed: nothing is used before that folder is made, or given up.
    property bool makesFolder: false
    property bool hasBegun: false

    objectName: "folderSheet"
    subtitle: "归档会直接放进所选文件夹，建议新建一个专用空文件夹（例如坚果云同步目录里的一个文件夹）。"
    wantedWidth: 720
    wantedHeight: 620
    scrolls: false
    primary: use
    note: makesFolder ? "先把新文件夹建好，或放弃" : choice.note
    noteLine: makesFolder ? "建好之前不会使用任何位置" : choice.noteLine
    noteLineElide: Text.ElideMiddle

    function ask() {
        makesFolder = false;
        hasBegun = false;
        picker.begin();
        open();
    }

    onOpened: {
        // It may have been known before the sheet stood.
        if (hasBegun)
            return;
        folders.forceActiveFocus(Qt.OtherFocusReason);
        beginAtUse();
    }

    // As soon as it is known what would be used.
    function beginAtUse() {
        if (hasBegun || !use.enabled || !folders.activeFocus)
            return;
        hasBegun = true;
        use.forceActiveFocus(keyboard.focusReason);
    }

    fillingItems: ColumnLayout {
        anchors.fill: parent
        spacing: 12

        RowLayout {
            Layout.fillWidth: true
            spacing: 8

            IconButton {
                objectName: "folderUpButton"
                symbol: "chevron-up"
                help: "上一级文件夹"
                enabled: sheet.picker.canGoUp
                onClicked: sheet.picker.goUp()
            }
            AppTextField {
                id: path
                objectName: "folderPath"
                Layout.fillWidth: true
                name: "文件夹的路径"
                placeholderText: "输入文件夹的路径，例如 ~/Documents"
                Keys.onReturnPressed: sheet.picker.openTyped(text)
                Keys.onEnterPressed: sheet.picker.openTyped(text)
                Keys.onDownPressed: folders.forceActiveFocus(Qt.TabFocusReason)
                Keys.onEscapePressed: event => {
                    event.accepted = text !== sheet.picker.pathText;
                    text = sheet.picker.pathText;
                }
            }
            AppButton {
                objectName: "newFolderButton"
                text: "新建文件夹"
                enabled: !sheet.makesFolder
                onClicked: sheet.makesFolder = true
            }
        }
        NewFolderRow {
            Layout.fillWidth: true
            visible: sheet.makesFolder
            picker: sheet.picker
            onDone: {
                sheet.makesFolder = false;
                folders.forceActiveFocus(Qt.OtherFocusReason);
            }
        }
        RowLayout {
            Layout.fillWidth: true
            visible: sheet.picker.errorText.length > 0
            spacing: 6

            Symbol {
                size: 16
                name: "octagon-x"
                color: Theme.danger
            }
            AppText {
                objectName: "folderError"
                Layout.fillWidth: true
                text: sheet.picker.errorText
                color: Theme.danger
                Accessible.role: Accessible.AlertMessage
            }
        }
        Banner {
            objectName: "folderWarning"
            Layout.fillWidth: true
            visible: sheet.choice.warningKind.length > 0 && !sheet.makesFolder
            kind: sheet.choice.warningKind
            headline: sheet.choice.warningTitle
            lines: [sheet.choice.warningText]
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
                picker: sheet.picker
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
                picker: sheet.picker
            }
        }
    }
    barItems: [
        AppButton {
            objectName: "cancelFolderButton"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "取消"
            onClicked: sheet.close()
        },
        AppButton {
            objectName: "useAnywayButton"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            visible: text.length > 0 && !sheet.makesFolder
            enabled: !sheet.picker.busy
            text: sheet.choice.anywayText
            onClicked: sheet.picker.useAnyway()
        },
        PrimaryButton {
            id: use
            objectName: "useFolderButton"
            enabled: sheet.choice.canUse && !sheet.makesFolder && !sheet.picker.busy
            text: sheet.choice.useText
            onEnabledChanged: sheet.beginAtUse()
            onClicked: sheet.picker.use()
        }
    ]

    Connections {
        target: sheet.picker
        function onListed() {
            path.text = sheet.picker.pathText;
        }
        function onChosen() {
            sheet.close();
        }
    }
}
