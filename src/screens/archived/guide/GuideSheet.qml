// How to delete archived mail in Apple Mail: first the comparison, and behind it what to enter there.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property DeletionGuide guide
    readonly property bool wanted: guide.isOpen

    objectName: "guideSheet"
    title: "建立智能邮箱,批量删除已备份的邮件"
    subtitle: "这些邮件都已备份到归档库。在 Apple Mail 里建一个「智能邮箱」把它们集中起来,就能一次全选删除、清空废纸篓,把本机空间释放出来。"
    wantedWidth: 820
    primary: guide.isReady ? openButton : null
    onWantedChanged: visible = wanted
    Component.onCompleted: visible = wanted
    onAboutToHide: if (wanted) guide.close()

    AppText {
        Layout.fillWidth: true
        text: "App 不会替你删邮件,删除由你在 Mail 里确认。"
        font.weight: Theme.medium
    }
    MenuButton {
        objectName: "guideSpans"
        Layout.topMargin: 12
        Layout.maximumWidth: 440
        visible: sheet.guide.isReady && sheet.guide.spans.length > 1
        name: "要圈定的年份"
        model: sheet.guide.spans
        currentIndex: sheet.guide.current
        onActivated: index => sheet.guide.current = index
    }
    Rectangle {
        Layout.fillWidth: true
        Layout.topMargin: 12
        visible: sheet.guide.isReady
        implicitHeight: scope.implicitHeight + 20
        radius: Theme.radiusLarge
        color: Theme.page
        border.color: Theme.line

        ColumnLayout {
            id: scope
            x: 16
            y: 10
            width: parent.width - 32
            spacing: 2

            RowLayout {
                Layout.fillWidth: true

                AppText {
                    Layout.fillWidth: true
                    text: "要圈定的范围"
                    role: AppText.Note
                    color: Theme.text3
                }
                CopyButton {
                    objectName: "copyConditionButton"
                    implicitHeight: Theme.bodyLine
                    fill: "transparent"
                    edge: "transparent"
                    labelColor: Theme.accent
                    symbolColor: Theme.accent
                    horizontalPadding: 0
                    label: "拷贝"
                    onClicked: sheet.guide.copyCondition()
                }
            }
            AppText {
                objectName: "guideCondition"
                Layout.fillWidth: true
                text: sheet.guide.condition
                font.weight: Theme.medium
                wrapMode: Text.Wrap
            }
        }
    }
    GuideStep {
        Layout.fillWidth: true
        Layout.topMargin: 18
        number: 1
        isDone: sheet.guide.isReady
        title: sheet.guide.proof.title
        lines: [sheet.guide.proof.line]

        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: 6
            visible: sheet.guide.proof.isComparing
            spacing: 12

            ProgressTrack {
                Layout.fillWidth: true
                value: sheet.guide.proof.fraction
                indeterminate: !sheet.guide.proof.isRunning && visible
                name: "逐字节核对"
            }
            AppText {
                visible: text.length > 0
                text: sheet.guide.proof.count
                color: Theme.text2
            }
            AppButton {
                objectName: "cancelGuideProof"
                visible: sheet.guide.proof.isRunning
                text: "取消核对"
                onClicked: sheet.guide.proof.cancel()
            }
        }
        AppButton {
            objectName: "startGuideProof"
            Layout.topMargin: 6
            visible: !sheet.guide.proof.isComparing && !sheet.guide.isReady
            text: "再核对一次"
            onClicked: sheet.guide.proof.start()
        }
        AppText {
            objectName: "guideLeftOut"
            Layout.fillWidth: true
            visible: text.length > 0
            text: sheet.guide.leftOut
            wrapMode: Text.Wrap
            color: Theme.attention
        }
    }
    Repeater {
        model: sheet.guide.steps
        delegate: GuideStep {
            id: step
            required property int index
            required property var modelData
            Layout.fillWidth: true
            number: index + 2
            // Rows outlive the guide by a moment when the window goes.
            isOpen: sheet.guide !== null && sheet.guide.isReady
            isLast: index === 3
            title: modelData.title
            lines: modelData.lines

            CopyButton {
                objectName: "copyNameButton"
                visible: step.index === 0 && step.isOpen
                implicitHeight: Theme.bodyLine
                fill: "transparent"
                edge: "transparent"
                labelColor: Theme.accent
                symbolColor: Theme.accent
                horizontalPadding: 0
                label: "拷贝名字"
                onClicked: sheet.guide.copyName()
            }
        }
    }
    Banner {
        Layout.fillWidth: true
        Layout.topMargin: 16
        visible: sheet.guide.isReady
        kind: "safe"
        lines: ["只删这个智能邮箱里的邮件——它们都在归档库里有备份。云端未下载的邮件不会被圈进来,不受影响。"]
    }
    note: problem.text
    noteColor: Theme.attention
    barItems: [
        AppButton {
            objectName: "closeGuideButton"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "关闭"
            onClicked: sheet.close()
        },
        PrimaryButton {
            id: openButton
            objectName: "openMailButton"
            enabled: sheet.guide.isReady
            symbol: "square-arrow-out-up-right"
            text: "打开 Apple Mail"
            onClicked: sheet.guide.openMail()
        }
    ]

    QtObject {
        id: problem
        property string text: ""
    }
    Connections {
        target: sheet.guide
        function onFailed(text: string) {
            problem.text = text;
        }
        function onChanged() {
            if (!sheet.guide.isOpen)
                problem.text = "";
        }
    }
}
