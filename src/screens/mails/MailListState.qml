// What stands in the place of the list while there is none: why, and what to do about it.
import QtQuick
import Corvane

FocusScope {
    id: place

    required property MailListScreen screen
    // Nothing runs that an update would disturb.
    property bool canUpdate: true
    readonly property int kind: screen.state
    readonly property var obstacle: screen.access.obstacle
    // The system has a page of settings for the permission; elsewhere it is the folder's own rights.
    readonly property bool hasSettings: Qt.platform.os === "osx"

    signal updateRequested

    EmptyState {
        objectName: "mailListState"
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        focus: true
        symbolColor: place.kind === MailListScreen.NoAccess || place.kind === MailListScreen.Failed
            ? Theme.attention : Theme.text3
        symbol: {
            switch (place.kind) {
            case MailListScreen.NoAccess:
                return "lock";
            case MailListScreen.Failed:
                return "triangle-alert";
            case MailListScreen.NeverScanned:
                return "mail-search";
            case MailListScreen.Partial:
                return "refresh-cw";
            default:
                return "mails";
            }
        }
        title: {
            switch (place.kind) {
            case MailListScreen.NoAccess:
                return place.hasSettings ? "还不能读取你的 Mail" : "这个 Mail 文件夹不能读取";
            case MailListScreen.Failed:
                return "没有读到邮件";
            case MailListScreen.NeverScanned:
                return "先更新所有 Mail 数据";
            case MailListScreen.Scanning:
                return "正在扫描 Mail…";
            case MailListScreen.Partial:
                return "邮件没有全部读完";
            default:
                return "正在读取邮件列表…";
            }
        }
        line: {
            switch (place.kind) {
            case MailListScreen.NoAccess:
                return place.hasSettings ? "授权后通常需要「完全退出」本 App 再重新打开才生效。"
                    : place.screen.access.answer.length > 0 ? place.screen.access.answer
                    : [place.obstacle.path, place.obstacle.missing].filter(text => text).join("\n");
            case MailListScreen.NeverScanned:
                return "更新后这里会列出 Mail 里的全部邮件。";
            case MailListScreen.Partial:
                return place.screen.stateText.length > 0 ? place.screen.stateText : "继续更新会重新读取全部邮件。";
            default:
                return place.screen.stateText;
            }
        }
        buttonText: place.kind === MailListScreen.NoAccess ? (place.hasSettings ? "打开完全磁盘访问设置" : "已授权，重新检查")
            : place.kind === MailListScreen.Partial ? "继续更新"
            : place.kind === MailListScreen.Failed || place.kind === MailListScreen.NeverScanned ? "更新 Mail 数据" : ""
        secondText: place.kind === MailListScreen.NoAccess ? (place.hasSettings ? "已授权，重新检查" : "")
            : place.kind === MailListScreen.Partial || place.kind === MailListScreen.Failed
            ? place.screen.access.restoreTitle : ""
        onActivated: {
            if (place.kind === MailListScreen.NoAccess && place.hasSettings)
                place.screen.access.openPrivacySettings();
            else if (place.kind === MailListScreen.NoAccess)
                place.screen.access.recheckAccess();
            else
                place.updateRequested();
        }
        button.enabled: place.kind === MailListScreen.NoAccess || place.canUpdate
        onSecondActivated: {
            if (place.kind === MailListScreen.NoAccess)
                place.screen.access.recheckAccess();
            else
                place.screen.access.restoreLastScan();
        }
    }
    AppButton {
        objectName: "cancelScan"
        anchors.horizontalCenter: parent.horizontalCenter
        y: parent.height / 2 + 96
        visible: place.kind === MailListScreen.Scanning
        text: "取消扫描"
        onClicked: place.screen.access.cancelScan()
    }
}
