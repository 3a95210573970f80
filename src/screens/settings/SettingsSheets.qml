// Export and import of the settings: the system's file dialogs on macOS, our own sheets elsewhere, and what is asked and
// told around them.
import QtQuick
import QtQuick.Dialogs
import Corvane

Item {
    id: sheets

    required property SettingsTravel travel
    readonly property string exportTitle: "导出配置备份"
    readonly property string importTitle: "导入配置备份"
    readonly property bool hasSystemDialogs: Qt.platform.os === "osx"

    function exportSettings() {
        if (hasSystemDialogs)
            exportDialog.active = true;
        else
            (exportSheet.made() as BackupFolderSheet)?.ask();
    }
    function importSettings() {
        if (hasSystemDialogs)
            importDialog.active = true;
        else
            (importSheet.made() as BackupFolderSheet)?.ask();
    }

    OnDemand {
        id: exportSheet
        source: Qt.resolvedUrl("BackupFolderSheet.qml")
        properties: ({ objectName: "exportSheet", picker: sheets.travel.exportPicker, title: sheets.exportTitle,
                       subtitle: "选一个文件夹。备份里只有 App 的设置，邮件本体仍在归档位置。" })
    }
    OnDemand {
        id: importSheet
        source: Qt.resolvedUrl("BackupFolderSheet.qml")
        properties: ({ objectName: "importSheet", picker: sheets.travel.importPicker, title: sheets.importTitle,
                       subtitle: "选备份所在的文件夹，里面最新的一份会先给你看，再由你决定。",
                       placeholder: "输入文件夹或备份文件的路径" })
    }
    OnDemand {
        source: Qt.resolvedUrl("BackupQuestion.qml")
        properties: ({ isOffer: true, travel: sheets.travel })
        wanted: sheets.travel.step === SettingsTravel.Offer
    }
    OnDemand {
        source: Qt.resolvedUrl("BackupQuestion.qml")
        properties: ({ travel: sheets.travel })
        wanted: sheets.travel.step === SettingsTravel.Question
    }
    OnDemand {
        id: result
        source: Qt.resolvedUrl("BackupResult.qml")
        properties: ({ travel: sheets.travel })
        wanted: sheets.travel.step === SettingsTravel.Result
    }
    Connections {
        target: exportSheet.item
        function onPathTyped(path: string) {
            sheets.travel.exportPicker.openTyped(path);
        }
    }
    Connections {
        target: importSheet.item
        function onPathTyped(path: string) {
            if (sheets.travel.importTyped(path))
                (importSheet.item as BackupFolderSheet).close();
            else
                sheets.travel.importPicker.openTyped(path);
        }
    }
    Connections {
        target: result.item
        function onAnotherRequested() {
            sheets.importSettings();
        }
    }

    // A Loader of Qt 6.4 takes no bound components.
    // qmllint disable unqualified
    Loader {
        id: exportDialog
        active: false
        onLoaded: (item as FileDialog).open()
        sourceComponent: FileDialog {
            title: sheets.exportTitle
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
            title: sheets.importTitle
            nameFilters: ["*.corvanebackup", "app-backup.json"]
            onAccepted: {
                sheets.travel.importFrom(selectedFile);
                importDialog.active = false;
            }
            onRejected: importDialog.active = false
        }
    }
}
