// What a verification or rebuild of a place came to, by files, or why it is needed.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Rectangle {
    id: box

    property string kind: ""
    property string title: ""
    property string line: ""
    property string dateText: ""
    // Of each `path` and `fault`.
    property var findings: []
    property int leftOut: 0
    property bool offersRebuild: false

    signal rebuildRequested
    signal findingRequested(int finding)
    signal copyRequested

    objectName: "placeReport"
    implicitHeight: content.implicitHeight + 16
    radius: Theme.radiusLarge
    color: Theme.toneBackground(kind)
    border.color: Theme.toneLine(kind)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: title + (line.length > 0 ? "，" + line : "")

    // No layouts: those of Qt 6.4 lose what changes while they are hidden.
    Column {
        id: content
        x: 12
        y: 8
        width: parent.width - 2 * x
        spacing: 2

        Item {
            width: parent.width
            height: Theme.controlHeightPane

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                size: 16
                name: box.kind === "safe" ? "circle-check" : box.kind === "danger" ? "octagon-x"
                    : box.kind === "attention" ? "triangle-alert" : "info"
                color: box.kind === "info" ? Theme.text2 : Theme.toneText(box.kind)
            }
            AppText {
                objectName: "reportTitle"
                x: 26
                anchors.verticalCenter: parent.verticalCenter
                width: date.x - x - Theme.space
                text: box.title
                color: Theme.toneText(box.kind)
                Accessible.ignored: true
            }
            AppText {
                id: date
                anchors.verticalCenter: parent.verticalCenter
                x: (rebuild.visible ? rebuild.x - Theme.section : parent.width) - width
                text: box.dateText
                role: AppText.Note
                color: Theme.text2
            }
            AppButton {
                id: rebuild
                objectName: "rebuildPlace"
                anchors.right: parent.right
                implicitHeight: Theme.controlHeightPane
                visible: box.offersRebuild
                text: "重建索引"
                onClicked: box.rebuildRequested()
            }
        }
        AppText {
            x: 26
            width: parent.width - x
            visible: text.length > 0
            text: box.line
            wrapMode: Text.Wrap
            color: Theme.text2
            Accessible.ignored: true
        }
        Repeater {
            model: box.findings
            delegate: RowLayout {
                id: finding
                required property int index
                required property var modelData
                x: 26
                width: content.width - x
                spacing: 16

                AppText {
                    Layout.fillWidth: true
                    text: finding.modelData.path
                    elide: Text.ElideMiddle
                }
                AppText {
                    Layout.maximumWidth: box.width / 2
                    text: finding.modelData.fault
                    color: Theme.text2
                }
                PlainButton {
                    Layout.rightMargin: -horizontalPadding
                    implicitHeight: 24
                    text: "显示位置"
                    onClicked: box.findingRequested(finding.index)
                }
            }
        }
        Item {
            x: 26
            width: parent.width - x
            height: copy.height
            visible: box.findings.length > 0

            AppText {
                anchors.verticalCenter: parent.verticalCenter
                text: box.leftOut > 0 ? "另有 " + box.leftOut.toLocaleString(Qt.locale(), "f", 0) + " 个文件" : ""
                role: AppText.Note
                color: Theme.text2
            }
            CopyButton {
                id: copy
                anchors.right: parent.right
                onClicked: box.copyRequested()
            }
        }
    }
}
