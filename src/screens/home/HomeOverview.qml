// Banner, chart, accounts and tree. In a low window the chart becomes one bar, in a small one the accounts go: they are
// the tree's first level.
import QtQuick
import QtQuick.Layouts
import Corvane

FocusScope {
    id: overview

    required property HomeScreen home
    property bool narrow: false
    property bool low: false
    property int margin: Theme.margin
    readonly property ScanStatus scan: home.scan
    readonly property var banner: home.figures.banner
    readonly property bool isPartial: home.state === HomeScreen.Partial
    readonly property bool hasFailure: scan.failureText.length > 0 && !isPartial

    objectName: "overview"
    focus: true

    OnDemand {
        id: partialHelp
        source: Qt.resolvedUrl("../controls/sheets/PartialMailHelp.qml")
    }
    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: overview.margin
        anchors.rightMargin: overview.margin
        spacing: 0

        Banner {
            id: bannerPart
            objectName: "safetyBanner"
            Layout.fillWidth: true
            Layout.topMargin: 4
            compact: overview.low
            kind: overview.hasFailure ? (overview.scan.isFailureAdvice ? "info" : "danger") : overview.banner.kind
            symbol: overview.hasFailure ? (overview.scan.isFailureAdvice ? "info" : "octagon-x")
                : overview.banner.symbol
            headline: overview.hasFailure ? "没有更新成功，下面是上次的结果" : overview.banner.headline
            lines: overview.hasFailure ? [overview.scan.failureText] : overview.banner.lines
            showsFooter: proofLine.hasContent
            footer: ProofLine {
                id: proofLine
                Layout.fillWidth: true
                proof: overview.home.proof
                kind: bannerPart.kind
                onTroublesRequested: overview.home.showTroubled()
                onPartialMailRequested: (partialHelp.made() as PartialMailHelp)?.open()
            }
        }
        HomeChart {
            Layout.fillWidth: true
            visible: !overview.isPartial
            Layout.topMargin: 16
            home: overview.home
            narrow: overview.narrow
            low: overview.low
            tall: overview.height > 960
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.topMargin: overview.low ? 16 : 12
            spacing: 20

            AccountList {
                Layout.preferredWidth: 228
                Layout.fillHeight: true
                visible: !overview.narrow && !overview.low && !overview.isPartial
                home: overview.home
            }
            ColumnLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                spacing: 0

                AppText {
                    Layout.fillWidth: true
                    Layout.bottomMargin: 10
                    visible: !overview.low && overview.home.state === HomeScreen.List
                    text: "默认按年份汇总。勾选多个年份可一起归档；展开某一年后，也可以只勾选其中几个文件夹。"
                    color: Theme.text2
                }
                OrganizeTree {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    visible: overview.home.state === HomeScreen.List
                    focus: !overview.isPartial
                    home: overview.home
                }
                EmptyState {
                    objectName: "nothingToDo"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    visible: overview.home.state === HomeScreen.NothingToDo
                    symbol: "archive"
                    title: "当前没有需要归档的邮件"
                    line: overview.home.nothingToDoLine
                }
                EmptyState {
                    objectName: "partialList"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    visible: overview.isPartial
                    focus: overview.isPartial
                    symbol: "refresh-cw"
                    title: "邮件没有全部读完"
                    line: "继续更新会重新读取全部邮件。"
                        + (secondText.length > 0 ? "也可以先回到上次的完整结果，邮件和归档都不会受影响。" : "")
                    buttonText: "继续更新"
                    button.enabled: overview.scan.canUpdate
                    secondText: overview.home.access.restoreTitle
                    onActivated: overview.scan.update()
                    onSecondActivated: overview.home.access.restoreLastScan()
                }
            }
        }
    }
}
