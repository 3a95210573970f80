// What concerns the whole program, above every screen: samples for a computer without Mail, a missing font.
import QtQuick
import Corvane

Column {
    id: notices

    required property WindowModel app
    property int margin: Theme.margin
    property bool isSettingsNoticeRead: false
    property string readUnkept

    spacing: Theme.space

    // Of each one there is nothing but this until it has something to say.
    component Notice: Loader {
        x: notices.margin
        width: notices.width - 2 * notices.margin
        visible: active
    }

    // A Loader of Qt 6.4 takes no bound components.
    // qmllint disable unqualified
    Notice {
        active: !notices.app.notices.hasChineseFont
        sourceComponent: Banner {
            objectName: "fontNotice"
            kind: "attention"
            // In the letters that every system has.
            headline: "No font for Chinese was found"
            lines: ["Install one (Debian and Ubuntu: fonts-noto-cjk) and start Corvane again."]
        }
    }
    Notice {
        active: (notices.app.notices.damagedSettings.length > 0 || notices.app.notices.hasUnreadableSettings)
            && !notices.isSettingsNoticeRead
        sourceComponent: Banner {
            objectName: "settingsNotice"
            kind: "attention"
            headline: "设置文件无法读取，已按初始设置打开"
            lines: notices.app.notices.hasUnreadableSettings
                ? ["文件没有改动，能够读取之前，这次的更改不会保存。", "请检查设置文件的权限和所在的磁盘，然后重新打开；已归档的邮件不受影响。"]
                : ["请重新选择归档位置；已归档的邮件不受影响。", "原来的设置保留在 " + notices.app.notices.damagedSettings]

            AppButton {
                objectName: "settingsNoticeButton"
                text: "知道了"
                onClicked: notices.isSettingsNoticeRead = true
            }
        }
    }
    Notice {
        active: notices.app.notices.unkept.length > 0 && notices.app.notices.unkept !== notices.readUnkept
        sourceComponent: Banner {
            objectName: "unkeptNotice"
            kind: "danger"
            headline: "有数据没能保存"
            lines: [notices.app.notices.unkept]

            AppButton {
                objectName: "unkeptNoticeButton"
                text: "知道了"
                onClicked: notices.readUnkept = notices.app.notices.unkept
            }
        }
    }
    Notice {
        active: notices.app.sampleStore.offered || notices.app.sampleStore.failure.length > 0
        sourceComponent: Banner {
            objectName: "sampleNotice"
            kind: notices.app.sampleStore.failure.length > 0 ? "danger" : "info"
            headline: notices.app.sampleStore.failure.length > 0 ? notices.app.sampleStore.failure
                : "这个主目录里没有 Apple Mail 的邮件"
            lines: ["可以先用示例邮件试用。示例另存在应用数据里，不会碰到其它文件。"]

            AppButton {
                objectName: "sampleButton"
                visible: notices.app.sampleStore.offered
                enabled: !notices.app.sampleStore.busy
                text: notices.app.sampleStore.busy ? "正在生成示例…" : "用示例邮件试用"
                onClicked: notices.app.sampleStore.make()
            }
        }
    }
}
