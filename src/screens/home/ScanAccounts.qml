// The accounts that a scan reads. Each of `entries` has a `symbol`, a `name` and a `line`.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Rectangle {
    id: box

    property var entries: []
    // More accounts than these would push the button out of sight.
    readonly property int most: 8

    implicitHeight: 38 + Math.min(entries.length, most + 1) * 40
    radius: Theme.radiusLarge
    color: Theme.surface
    border.color: Theme.line

    Rectangle {
        x: 1
        y: 1
        width: parent.width - 2
        height: 36
        radius: Theme.radiusLarge - 1
        color: Theme.page

        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: parent.radius
            color: parent.color
        }
        AppText {
            anchors.verticalCenter: parent.verticalCenter
            x: 15
            text: "正在读取的邮箱"
            font.weight: Theme.medium
        }
        AppText {
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: 15
            text: box.entries.length
            color: Theme.text3
        }
    }
    Column {
        x: 1
        y: 37
        width: parent.width - 2

        Repeater {
            model: Math.min(box.entries.length, box.most + 1)
            delegate: Item {
                id: row
                required property int index
                readonly property bool isRest: index === box.most
                readonly property var entry: box.entries[index]
                width: parent.width
                height: 40

                Rectangle {
                    width: parent.width
                    height: Theme.hairline
                    color: Theme.line
                }
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 15
                    anchors.rightMargin: 15
                    spacing: 12

                    Symbol {
                        visible: !row.isRest
                        size: 16
                        name: row.entry.symbol
                        color: Theme.text3
                    }
                    AppText {
                        Layout.fillWidth: true
                        elide: Text.ElideMiddle
                        text: row.isRest ? "另有 " + (box.entries.length - box.most) + " 个邮箱" : row.entry.name
                    }
                    AppText {
                        visible: !row.isRest
                        text: row.entry.line
                        color: Theme.text3
                    }
                }
            }
        }
    }
}
