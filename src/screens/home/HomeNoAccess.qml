// Mail can't be read: the one permission that is missing, as it looks in the system's settings.
import QtQuick
import QtQuick.Layouts
import Corvane

CentredPane {
    id: pane

    required property HomeScreen home

    objectName: "noAccess"
    columnWidth: 540

    EmptyState {
        Layout.fillWidth: true
        symbol: "lock"
        symbolColor: Theme.attention
        title: "还不能读取你的 Mail"
        line: "授权后通常需要「完全退出」本 App 再重新打开才生效。"
    }
    PermissionPicture {
        Layout.fillWidth: true
    }
    StepList {
        Layout.fillWidth: true
        spacing: 12
        steps: [
            { title: "点下面的按钮，打开系统设置", line: "会直接停在「完全磁盘访问权限」这一页。" },
            { title: "打开 Corvane 右边的开关", line: "列表里没有时，点「+」把它加进来。" },
            { title: "完全退出 Corvane，再重新打开", line: "Mail 数据只会被读取，不会被改动。" }
        ]
    }
    RowLayout {
        Layout.alignment: Qt.AlignHCenter
        spacing: 12

        AppButton {
            objectName: "recheckAccessButton"
            text: "已授权，重新检查"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            onClicked: pane.home.access.recheckAccess()
        }
        PrimaryButton {
            objectName: "openSettingsButton"
            text: "打开完全磁盘访问设置"
            focus: true
            onClicked: pane.home.access.openPrivacySettings()
        }
    }
}
