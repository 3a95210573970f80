// Mail can't be read on a system without settings for that: which folder it is, whose, which right is missing, and where
// else Mail may be.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

CentredPane {
    id: pane

    required property HomeScreen home
    readonly property AccessActions access: home.access
    readonly property var obstacle: access.obstacle
    // Else every right is there, and what was to be read still can't be.
    readonly property bool lacksRight: obstacle.missing !== "" || obstacle.owner === undefined

    signal otherMailRequested

    objectName: "folderAccess"
    columnWidth: 560
    columnSpacing: 20

    EmptyState {
        Layout.fillWidth: true
        symbol: pane.lacksRight ? "lock" : "triangle-alert"
        symbolColor: Theme.attention
        title: pane.lacksRight ? "这个 Mail 文件夹不能读取" : "Mail 的数据读不出来"
        line: pane.lacksRight ? "它在这台电脑上，但你的用户没有读取它的权限。"
            : "文件在这台电脑上，也有读取的权限，但读不出内容。可能没有复制完，或者已经损坏。"
    }
    PathFacts {
        objectName: "obstacleFacts"
        Layout.fillWidth: true
        visible: path.length > 0
        path: pane.obstacle.path ?? ""
        symbol: pane.obstacle.symbol ?? "folder"
        facts: [
            { caption: pane.obstacle.kind ?? "", text: pane.obstacle.state ?? "" },
            { caption: "所有者", text: pane.obstacle.owner ?? "" },
            { caption: "现在的权限", text: pane.obstacle.mode ?? "" },
            { caption: "缺少的权限", text: pane.obstacle.missing ?? "" }
        ].filter(fact => fact.text.length > 0)
        onCopyRequested: pane.access.copyObstaclePath()
    }
    StepList {
        Layout.fillWidth: true
        spacing: 12
        steps: [
            pane.lacksRight
                ? { title: "给你的用户缺少的权限", line: "由所有者或管理员在文件管理器里改，里面的文件夹也要。只需读取。" }
                : { title: "确认这个文件是完整的", line: "从原来的 Mac 重新拷贝一次，或在那里打开一次 Mail 再拷贝。" },
            { title: "回到这里，重新检查", line: "不用退出 Corvane。Mail 数据只会被读取，不会被改动。" }
        ]
    }
    RowLayout {
        Layout.alignment: Qt.AlignHCenter
        spacing: 12

        AppButton {
            objectName: "otherMailButton"
            symbol: "folder-open"
            text: "选择其它位置…"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            onClicked: pane.otherMailRequested()
        }
        PrimaryButton {
            objectName: "recheckAccessButton"
            text: pane.access.isChecking ? "正在检查…" : pane.lacksRight ? "已授权，重新检查" : "重新检查"
            enabled: !pane.access.isChecking
            focus: true
            onClicked: pane.access.recheckAccess()
        }
    }
    RowLayout {
        Layout.alignment: Qt.AlignHCenter
        visible: pane.access.answer.length > 0
        spacing: 6

        Symbol {
            size: 14
            name: "info"
            color: Theme.attention
        }
        AppText {
            objectName: "accessAnswer"
            text: pane.access.answer
            role: AppText.Note
            color: Theme.text2
            Accessible.role: Accessible.AlertMessage
        }
    }
    Line {
        Layout.fillWidth: true
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 12

        Symbol {
            Layout.alignment: Qt.AlignTop
            size: 18
            name: "mail-search"
            color: Theme.text2
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            AppText {
                text: "Mail 在别处？"
            }
            AppText {
                Layout.fillWidth: true
                text: "可以选另一个用户的个人文件夹，或直接选一个 Mail 文件夹，比如从旧 Mac 拷来的备份。"
                wrapMode: Text.Wrap
                color: Theme.text2
            }
        }
    }
}
