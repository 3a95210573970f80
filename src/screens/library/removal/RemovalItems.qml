// The mails that a removal is about, each with what is known of its original; or, where `failed`, why it stayed.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

Rectangle {
    id: list

    property var items: []
    property int leftOut: 0
    property bool failed: false

    implicitHeight: column.height + 2 * Theme.hairline
    radius: Theme.radiusLarge
    color: "transparent"
    border.color: Theme.line

    Column {
        id: column
        x: Theme.hairline
        y: Theme.hairline
        width: parent.width - 2 * x

        Repeater {
            model: list.items
            delegate: Item {
                id: row
                required property int index
                required property var modelData
                readonly property bool only: modelData.only ?? false
                readonly property string second: list.failed ? modelData.reason : modelData.sender
                width: column.width
                height: Math.max(56, 34 + secondLabel.height)
                Accessible.role: Accessible.ListItem
                Accessible.name: [modelData.subject, second, modelData.state ?? "", modelData.sizeText].join("，")

                Rectangle {
                    visible: row.index > 0
                    width: parent.width
                    height: Theme.hairline
                    color: Theme.line
                }
                Symbol {
                    x: 12
                    y: 10
                    visible: list.failed
                    size: 16
                    name: "octagon-x"
                    color: Theme.danger
                }
                AppText {
                    x: list.failed ? 36 : 12
                    y: 8
                    width: parent.width - x - dateLabel.width - 2 * Theme.section
                    text: row.modelData.subject
                    Accessible.ignored: true
                }
                AppText {
                    id: dateLabel
                    anchors.right: parent.right
                    anchors.rightMargin: Theme.section
                    y: 8
                    text: list.failed ? row.modelData.sizeText : row.modelData.dateText
                    role: AppText.Note
                    color: Theme.text3
                    Accessible.ignored: true
                }
                AppText {
                    id: secondLabel
                    x: list.failed ? 36 : 12
                    y: 28
                    width: list.failed ? parent.width - x - Theme.section : Math.min(implicitWidth, parent.width / 2)
                    text: row.second
                    wrapMode: list.failed ? Text.Wrap : Text.NoWrap
                    color: Theme.text2
                    Accessible.ignored: true
                }
                Symbol {
                    x: secondLabel.x + secondLabel.width + Theme.space
                    y: 31
                    visible: !list.failed
                    size: 14
                    name: row.only ? "triangle-alert" : "mail"
                    color: row.only ? Theme.attention : Theme.text3
                }
                AppText {
                    x: secondLabel.x + secondLabel.width + Theme.space + 18
                    y: 28
                    visible: !list.failed
                    text: row.modelData.state ?? ""
                    role: AppText.Note
                    color: row.only ? Theme.attention : Theme.text3
                    Accessible.ignored: true
                }
                AppText {
                    anchors.right: parent.right
                    anchors.rightMargin: Theme.section
                    y: 28
                    visible: !list.failed
                    text: row.modelData.sizeText
                    role: AppText.Note
                    color: Theme.text3
                    Accessible.ignored: true
                }
            }
        }
        AppText {
            visible: list.leftOut > 0
            x: 12
            height: 36
            text: "另有 " + list.leftOut.toLocaleString(Qt.locale(), "f", 0) + " 封"
            role: AppText.Note
            color: Theme.text3
        }
    }
}
