// What can be done with the mail that is shown, and with those that are selected.
import QtQuick
import Corvane

AppMenu {
    id: menu

    required property LibraryScreen screen
    readonly property int selected: screen.selection.count
    readonly property bool hasFile: screen.mail.fileState !== ArchivedFile.Gone
        && screen.mail.fileState !== ArchivedFile.Unplugged

    objectName: "libraryMenu"

    AppMenuRow {
        text: "打开归档邮件"
        keys: "↩"
        enabled: menu.hasFile
        onTriggered: menu.screen.actions.openMail()
    }
    AppMenuRow {
        text: "在文件管理器中显示"
        enabled: menu.hasFile
        onTriggered: menu.screen.actions.revealMail()
    }
    AppMenuRow {
        objectName: "findOriginalRow"
        text: "在 Mail 中查找原件"
        onTriggered: menu.screen.actions.findOriginal()
    }
    AppMenuLine {}
    AppMenuRow {
        text: menu.selected > 1 ? "拷贝选中的 " + menu.selected + " 行" : "拷贝这一行"
        keys: Qt.platform.os === "osx" ? "⌘C" : "Ctrl+C"
        onTriggered: menu.screen.actions.copyRows()
    }
    AppMenuRow {
        text: "拷贝为文本"
        onTriggered: menu.screen.actions.copyMail()
    }
    AppMenuLine {}
    AppMenuRow {
        objectName: "removeRow"
        text: menu.selected > 1 ? "从归档库移除选中的 " + menu.selected + " 封…" : "从归档库移除…"
        keys: Qt.platform.os === "osx" ? "⌘⌫" : "Del"
        enabled: menu.screen.actions.canRemove
        onTriggered: menu.screen.actions.removeSelected()
    }
}
