// Export and import of the settings: the system's file dialogs on macOS, our own sheets elsewhere, and what is asked and
// told around them.
import QtQuick
import QtQuick.Dialogs
import Corvane

Item {
    id: sheets

    required property SettingsTravel travel
    readonly property bool hasSystemDialogs: Qt.platform.os === "osx"

    function exportSettings() {
        if (hasSystemDialogs)
            exportDialog.active = true;
        else
            exportSheet.ask();
    }
    function importSettings() {
        if (hasSystemDialogs)
            importDialog.active = true;
        else
            importSheet.ask();
    }

    BackupFolderSheet {
        id: exportSheet
        objectName: "exportSheet"
        picker: sheets.travel.exportPicker
        title: "导出配置备份"
        subtitle: "选一个文件夹。备份里只有 App 的设置，邮件本体仍在归档位置。"
        onPathTyped: path => picker.openTyped(path)
    }
    BackupFolderSheet {
        id: importSheet
        objectName: "importSheet"
        picker: sheets.travel.importPicker
        title: "导入配置备份"
        subtitle: "选备份所在的文件夹，里面最新的一份会先给你看，再由你决定。"
        placeholder: "输入文件夹或备份文件的路径"
        onPathTyped: path => {
            if (sheets.travel.importTyped(path))
                close();
            else
                picker.openTyped(path);
        }
    }
    BackupQuestion {
        isOffer: true
        travel: sheets.travel
    }
    BackupQuestion {
        travel: sheets.travel
    }
    BackupResult {
        travel: sheets.travel
        onAnotherRequested: sheets.importSettings()
    }

    // A Loader of Qt 6.4 takes no bound components.
    // qmllint disable unqualified
    Loader {
        id: exportDialog
        active: false
        onLoaded: (item as FileDialog).open()
        sourceComponent: FileDialog {
            title: exportSheet.title
            fileMode: FileDialog.SaveFile
            defaultSuffix: "corvanebackup"
            selectedFile: "file:///" + encodeURIComponent(sheets.travel.exportName)
            onAccepted: {
                sheets.travel.exportTo(selectedFile);
                exportDialog.active = false;
            }
            onRejected: exportDialog.active = false
        }
    }
    Loader {
        id: importDialog
        active: false
        onLoaded: (item as FileDialog).open()
        sourceComponent: FileDialog {
            title: importSheet.title
            nameFilters: ["*.corvanebackup", "app-backup.json"]
            onAccepted: {
                sheets.travel.importFrom(selectedFile);
                importDialog.active = false;
            }
            onRejected: importDialog.active = false
        }
    }
}
