// Chooses where a backup of the settings goes to, or comes from.
import QtQuick
import Corvane

Sheet {
    id: sheet

    required property FolderPicker picker
    readonly property var choice: picker.choice
    property alias placeholder: browser.placeholder

    signal pathTyped(string path)

    wantedWidth: 720
    wantedHeight: 620
    scrolls: false
    primary: use
    note: choice.note
    noteLine: choice.noteLine
    noteLineElide: Text.ElideMiddle

    function ask() {
        picker.begin();
        open();
    }

    onOpened: browser.enterFolders()

    fillingItems: FolderBrowser {
        id: browser
        anchors.fill: parent
        picker: sheet.picker
        onPathTyped: path => sheet.pathTyped(path)
    }
    barItems: [
        AppButton {
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "取消"
            onClicked: sheet.close()
        },
        PrimaryButton {
            id: use
            objectName: "useBackupFolder"
            enabled: sheet.choice.canUse
            text: sheet.choice.useText.length > 0 ? sheet.choice.useText : "好"
            onClicked: sheet.picker.use()
        }
    ]

    Connections {
        target: sheet.picker
        function onChosen() {
            sheet.close();
        }
    }
}
