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
        onTriggered: menu.screen.openInMail()
    }
    AppMenuRow {
        text: "用系统程序打开文件"
        onTriggered: menu.screen.openFile()
    }
    AppMenuRow {
        text: "在文件管理器中显示"
        onTriggered: menu.screen.revealFile()
    }
    AppMenuLine {}
    AppMenuRow {
        objectName: "archiveRow"
        text: menu.several ? "归档选中的 " + menu.screen.selection.count + " 封…" : "只归档这一封…"
        enabled: menu.screen.canArchive
        onTriggered: menu.screen.archiveSelection()
    }
    AppMenuLine {}
    AppMenuRow {
        text: menu.several ? "拷贝选中的行" : "拷贝这一行"
        keys: Qt.platform.os === "osx" ? "⌘C" : "Ctrl+C"
        onTriggered: menu.screen.copySelection()
    }
    AppMenuRow {
        objectName: "copySubjectRow"
        text: "拷贝主题"
        onTriggered: menu.screen.copySubject()
    }
    AppMenuRow {
        text: "拷贝 Message-ID"
        enabled: menu.screen.detail.hasMessageID
        onTriggered: menu.screen.copyMessageID()
    }
    AppMenuRow {
        text: "拷贝文件路径"
        onTriggered: menu.screen.copyPath()
    }
    AppMenuLine {}
    AppMenuRow {
        text: "只看这位发件人"
        onTriggered: menu.screen.filterBySender()
    }
    AppMenuRow {
        text: "只看这一年"
        enabled: menu.screen.detail.isDated
        onTriggered: menu.screen.filterByYear()
    }
}
