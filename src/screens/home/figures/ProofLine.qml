// How much was compared with its archived copies, below the banner's lines: the figures with the way to compare the
// rest, or the comparison that is under way.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

ColumnLayout {
    id: line

    required property ProofStatus proof
    property string kind: "info"
    readonly property bool hasContent: proof.isProving || proof.isAwaited || hasItems || proof.partialText.length > 0
    readonly property bool hasItems: proof.items.length > 0

    signal troublesRequested
    signal partialMailRequested

    objectName: "proofLine"
    spacing: 7
    visible: hasContent

    Line {
        Layout.fillWidth: true
        color: Theme.toneLine(line.kind)
    }
    RowLayout {
        Layout.fillWidth: true
        visible: line.proof.isProving
        spacing: 12

        AppText {
            objectName: "proofProgress"
            text: line.proof.progressText
        }
        ProgressTrack {
            Layout.fillWidth: true
            value: line.proof.fraction
            name: "逐字节核对"
        }
        PlainButton {
            objectName: "cancelProof"
            implicitHeight: Theme.controlHeightPane
            text: "取消核对"
            help: "核对过的不用再来"
            onClicked: line.proof.cancel()
        }
    }
    AppText {
        objectName: "proofAwaited"
        visible: line.proof.isAwaited && !line.proof.isProving && !line.hasItems
        text: "正在统计逐字节核对的结果…"
        color: Theme.text2
    }
    Flow {
        Layout.fillWidth: true
        visible: !line.proof.isProving && line.hasItems
        // Between lines; items stand further apart.
        spacing: Theme.half

        Repeater {
            model: line.proof.items

            Row {
                id: item
                required property var modelData
                rightPadding: Theme.section
                spacing: 6

                Symbol {
                    y: 2
                    size: 16
                    name: item.modelData.symbol
                    color: item.modelData.tone.length > 0 ? Theme.toneText(item.modelData.tone) : Theme.text2
                }
                AppText {
                    text: item.modelData.text
                }
            }
        }
        PlainButton {
            objectName: "startProof"
            implicitHeight: Theme.bodyLine
            visible: line.proof.canStart
            text: "现在核对"
            help: "把原件与归档副本逐字节比较，全部一致才可以放心删除原件"
            onClicked: line.proof.start()
        }
        PlainButton {
            objectName: "showTroubled"
            implicitHeight: Theme.bodyLine
            visible: line.proof.hasTroubles
            text: "查看"
            help: "在邮件列表里只看有问题的邮件"
            onClicked: line.troublesRequested()
        }
    }
    RowLayout {
        Layout.fillWidth: true
        visible: line.proof.partialText.length > 0
        spacing: 6

        Symbol {
            size: 16
            name: "cloud-download"
            color: Theme.text2
        }
        AppText {
            objectName: "partialMail"
            text: line.proof.partialText
        }
        PlainButton {
            objectName: "showPartialHelp"
            implicitHeight: Theme.bodyLine
            text: "怎样补全"
            onClicked: line.partialMailRequested()
        }
        Item {
            Layout.fillWidth: true
        }
    }
}
