// What can be done with the selected messages, and with the current one.
import QtQuick
import Corvane

AppMenu {
    id: menu

    required property MailListScreen screen
    readonly property bool several: screen.selection.count > 1

    objectName: "messageMenu"

    AppMenuRow {
        text: "在 Mail 中打开"
        keys: "↩"
        onTriggered: menu.screen.actions.openInMail()
    }
    AppMenuRow {
        text: "用系统程序打开文件"
        onTriggered: menu.screen.actions.openFile()
    }
    AppMenuRow {
        text: "在文件管理器中显示"
        onTriggered: menu.screen.actions.revealFile()
    }
    AppMenuLine {}
    AppMenuRow {
        objectName: "archiveRow"
        text: menu.several ? "归档选中的 " + menu.screen.selection.count + " 封…" : "只归档这一封…"
        enabled: menu.screen.canArchive
        onTriggered: menu.screen.actions.archiveSelection()
    }
    AppMenuRow {
        objectName: "setAsideRow"
        text: menu.screen.detail.shown.isSetAside ? "不再放一边" : "先放一边"
        enabled: menu.screen.detail.shown.isSetAside || !menu.screen.detail.shown.archived
        onTriggered: menu.screen.actions.setAside(!menu.screen.detail.shown.isSetAside)
    }
    AppMenuLine {}
    AppMenuRow {
        text: menu.several ? "拷贝选中的行" : "拷贝这一行"
        keys: Qt.platform.os === "osx" ? "⌘C" : "Ctrl+C"
        onTriggered: menu.screen.actions.copySelection()
    }
    AppMenuRow {
        objectName: "copySubjectRow"
        text: "拷贝主题"
        onTriggered: menu.screen.actions.copySubject()
    }
    AppMenuRow {
        text: "拷贝 Message-ID"
        enabled: menu.screen.detail.shown.hasMessageID
        onTriggered: menu.screen.actions.copyMessageID()
    }
    AppMenuRow {
        text: "拷贝文件路径"
        onTriggered: menu.screen.actions.copyPath()
    }
    AppMenuLine {}
    AppMenuRow {
        text: "只看这位发件人"
        onTriggered: menu.screen.actions.filterBySender()
    }
    AppMenuRow {
        text: "只看这一年"
        enabled: menu.screen.detail.shown.isDated
        onTriggered: menu.screen.actions.filterByYear()
    }
}
