// The attachments of the open message. A low window shows their number, and the list on demand.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

Rectangle {
    id: box

    required property MessageDetail detail
    required property AttachmentActions actions
    property bool compact: false
    property bool open: !compact
    readonly property int rowHeight: 36

    onCompactChanged: open = !compact

    implicitHeight: column.height + 2 * Theme.hairline
    radius: Theme.radiusLarge
    color: Theme.surface
    border.color: Theme.line

    Column {
        id: column
        x: Theme.hairline
        y: Theme.hairline
        width: parent.width - 2 * Theme.hairline

        Rectangle {
            width: parent.width
            height: Theme.tableHeadHeight
            radius: Theme.radiusLarge - 1
            color: Theme.page

            // The lower corners are those of the list below.
            Rectangle {
                visible: box.open
                anchors.bottom: parent.bottom
                width: parent.width
                height: parent.radius
                color: parent.color
            }
            AppText {
                anchors.verticalCenter: parent.verticalCenter
                x: 12
                text: box.detail.shown.attachmentCount + " 个附件"
                font.weight: Theme.medium
            }
            AppText {
                anchors.verticalCenter: parent.verticalCenter
                anchors.right: parent.right
                anchors.rightMargin: box.compact ? 32 : 12
                text: box.detail.attachments.sumText
                role: AppText.Note
                color: Theme.text3
            }
            IconButton {
                anchors.verticalCenter: parent.verticalCenter
                anchors.right: parent.right
                anchors.rightMargin: 2
                implicitHeight: Theme.minimumTarget
                visible: box.compact
                bare: true
                fill: "transparent"
                symbol: box.open ? "chevron-up" : "chevron-down"
                symbolSize: 14
                help: box.open ? "收起附件" : "显示附件"
                onClicked: box.open = !box.open
            }
        }
        Repeater {
            model: box.open ? box.detail.attachments : null
            delegate: AttachmentRow {
                required property int index
                width: column.width
                height: box.rowHeight
                onOpened: box.actions.open(index)
                onMenuRequested: item => menu.openFor(index, item)
            }
        }
        AppText {
            visible: box.open && box.detail.attachmentsLeftOut > 0
            x: 12
            height: box.rowHeight
            text: "另有 " + box.detail.attachmentsLeftOut.toLocaleString(Qt.locale(), "f", 0) + " 个附件"
            role: AppText.Note
            color: Theme.text3
        }
    }

    AttachmentMenu {
        id: menu
        actions: box.actions
    }
}
