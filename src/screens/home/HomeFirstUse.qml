// Nothing has been scanned yet: the one thing to do, and what follows.
import QtQuick
import QtQuick.Layouts
import Corvane

CentredPane {
    id: pane

    required property HomeScreen home

    readonly property bool hasFailed: home.scan.failureText.length > 0 && !home.scan.isFailureAdvice

    signal otherMailRequested

    objectName: "firstUse"

    EmptyState {
        Layout.fillWidth: true
        focus: true
        symbol: pane.hasFailed ? "triangle-alert" : "mail-search"
        symbolColor: pane.home.scan.failureText.length === 0 ? Theme.accent
            : pane.home.scan.isFailureAdvice ? Theme.text3 : Theme.attention
        title: pane.hasFailed ? "没有读到邮件" : "先更新所有 Mail 数据"
        line: pane.home.scan.failureText.length > 0 ? pane.home.scan.failureText
            : "更新后这里会按邮箱和年份列出待归档邮件，展开年份可查看文件夹。"
        buttonText: pane.hasFailed ? "再试一次" : "更新 Mail 数据"
        secondText: "选择别处的 Mail…"
        steps: [
            { title: "更新 Mail 数据", line: "读出每个邮箱、每一年的邮件。只读取，不改动 Mail 里的任何内容。" },
            { title: "选择归档位置，放入归档库", line: "每封邮件存成标准的 .eml 文件，写好后从磁盘重新读出核对。" },
            { title: "确认无误，再到 Apple Mail 里删除", line: "本 App 不会替你删邮件；哪些可以删，会在「已归档概览」里写明。" }
        ]
        onActivated: pane.home.scan.update()
        onSecondActivated: pane.otherMailRequested()
    }
}
