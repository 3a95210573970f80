// What stands in the place of the list while there is none: why, and what to do about it.
import QtQuick
import Corvane

FocusScope {
    id: place

    required property MailListScreen screen
    // Nothing runs that an update would disturb.
    property bool canUpdate: true
    readonly property int kind: screen.state

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
            default:
                return "mails";
            }
        }
        title: {
            switch (place.kind) {
            case MailListScreen.NoAccess:
                return "还不能读取你的 Mail";
            case MailListScreen.Failed:
                return "没有读到邮件";
            case MailListScreen.NeverScanned:
                return "先更新所有 Mail 数据";
            case MailListScreen.Scanning:
                return "正在扫描 Mail…";
            default:
                return "正在读取邮件列表…";
            }
        }
        line: {
            switch (place.kind) {
            case MailListScreen.NoAccess:
                return "授权后通常需要「完全退出」本 App 再重新打开才生效。";
            case MailListScreen.NeverScanned:
                return "更新后这里会列出 Mail 里的全部邮件。";
            default:
                return place.screen.stateText;
            }
        }
        buttonText: place.kind === MailListScreen.NoAccess ? "打开完全磁盘访问设置"
            : place.kind === MailListScreen.Failed || place.kind === MailListScreen.NeverScanned ? "更新 Mail 数据" : ""
        secondText: place.kind === MailListScreen.NoAccess ? "已授权，重新检查" : ""
        onActivated: {
            if (place.kind === MailListScreen.NoAccess)
                place.screen.access.openPrivacySettings();
            else
                place.updateRequested();
        }
        button.enabled: place.kind === MailListScreen.NoAccess || place.canUpdate
        onSecondActivated: place.screen.access.recheckAccess()
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
