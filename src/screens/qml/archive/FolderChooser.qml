// The system's folder picker for the archive's place; the folder may be made in it.
import QtQuick
import QtQuick.Dialogs
import Corvane

FolderDialog {
    id: dialog

    required property ArchiveScreen archive

    function ask() {
        currentFolder = archive.destinationFolder;
        open();
    }

    title: "选择附件转移位置"
    acceptLabel: "使用此位置"
    onAccepted: archive.chooseDestination(selectedFolder)
}
