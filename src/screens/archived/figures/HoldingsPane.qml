// What the archive holds, by what may be done with the originals.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

ColumnLayout {
    id: pane

    required property ArchivedScreen screen
    property bool low: false
    readonly property bool tight: width < 520
    readonly property var parts: screen.holdings

    objectName: "holdings"
    spacing: low ? 6 : 12

    RowLayout {
        Layout.fillWidth: true
        spacing: 0

        AppText {
            Layout.fillWidth: true
            text: "归档库里的邮件"
            color: Theme.text2
        }
        // Without a least width the layout of Qt 6.4 may keep that of earlier texts.
        AppText {
            Layout.minimumWidth: implicitWidth
            text: pane.screen.totalCount + " · "
            color: Theme.text2
        }
        AppText {
            Layout.minimumWidth: implicitWidth
            text: pane.screen.totalSize
            font.weight: Theme.strong
        }
    }
    Item {
        Layout.fillWidth: true
        implicitHeight: Theme.shareBarHeight

        // What nobody knows yet.
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusBar
            visible: !pane.parts.some(part => part.value > 0)
            color: Theme.track
        }
        ShareBar {
            anchors.fill: parent
            parts: pane.parts
        }
    }
    GridLayout {
        Layout.fillWidth: true
        columns: 2
        columnSpacing: pane.tight ? 16 : 32
        rowSpacing: 2

        Repeater {
            model: pane.parts
            delegate: RowLayout {
                id: entry
                required property var modelData
                Layout.fillWidth: true
                Layout.preferredWidth: 10
                spacing: pane.tight ? 6 : 8
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.label + "，" + modelData.text + "，" + modelData.size

                Swatch {
                    series: entry.modelData.series
                }
                AppText {
                    Layout.fillWidth: true
                    text: entry.modelData.label
                    role: pane.tight ? AppText.Note : AppText.Body
                    Accessible.ignored: true
                }
                AppText {
                    Layout.minimumWidth: implicitWidth
                    text: entry.modelData.text
                    role: pane.tight ? AppText.Note : AppText.Body
                    color: Theme.text2
                    horizontalAlignment: Text.AlignRight
                    Accessible.ignored: true
                }
                AppText {
                    Layout.preferredWidth: pane.tight ? 60 : 76
                    Layout.minimumWidth: Math.min(implicitWidth, Layout.preferredWidth)
                    text: entry.modelData.size
                    font.weight: Theme.strong
                    horizontalAlignment: Text.AlignRight
                    Accessible.ignored: true
                }
            }
        }
    }
}
