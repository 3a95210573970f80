// Asks for an archive's folder: the system's picker on macOS, our own elsewhere. Qt doesn't tell whether another
// desktop has one, and its substitute speaks English and knows no dark mode.
import QtQuick
import QtQuick.Dialogs
import Corvane

Item {
    id: chooser

    required property FolderPicker picker
    // At which the system's picker begins.
    property url folder
    property string title: "选择附件转移位置"

    // What was chosen in the system's picker; our own tells the one that it is given.
    signal folderChosen(url folder)

    function ask() {
        if (Qt.platform.os === "osx")
            systemPicker.active = true;
        else
            (own.made() as FolderSheet)?.ask();
    }

    OnDemand {
        id: own
        source: Qt.resolvedUrl("FolderSheet.qml")
        properties: ({ picker: chooser.picker, title: Qt.binding(() => chooser.title) })
    }
    // A Loader of Qt 6.4 takes no bound components.
    // qmllint disable unqualified
    Loader {
        id: systemPicker
        active: false
        onLoaded: (item as FolderDialog).open()
        sourceComponent: FolderDialog {
            title: chooser.title
            acceptLabel: "使用此位置"
            currentFolder: chooser.folder
            onAccepted: {
                chooser.folderChosen(selectedFolder);
                systemPicker.active = false;
            }
            onRejected: systemPicker.active = false
        }
    }
}
