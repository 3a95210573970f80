// The attachments of the mail at the foot of its pane. A low window shows their number, and the tiles on demand.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

Rectangle {
    id: pane

    required property AttachmentTiles attachments
    property bool compact: false
    property bool open: !compact
    readonly property int tileHeight: 62
    readonly property int columns: width >= 520 ? 2 : 1
    readonly property int lines: Math.ceil(attachments.count / columns)

    // Of one, or all for -1.
    signal saveRequested(int row)

    onCompactChanged: open = !compact

    implicitHeight: 41 + (open ? Math.min(lines, 2) * (tileHeight + Theme.space) + Theme.space : 0)
    color: Theme.surface

    Rectangle {
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    FocusGroup {
        width: parent.width
        height: 41

        AppText {
            anchors.verticalCenter: parent.verticalCenter
            x: Theme.margin
            text: pane.attachments.count + pane.attachments.leftOut + " 个附件"
            font.weight: Theme.medium

            AppText {
                anchors.left: parent.right
                anchors.leftMargin: Theme.space
                text: pane.attachments.saving ? pane.attachments.savingText : "· 双击附件卡片打开"
                color: Theme.text3
            }
        }
        Row {
            anchors.right: parent.right
            anchors.rightMargin: Theme.margin - 6
            anchors.verticalCenter: parent.verticalCenter

            PlainButton {
                objectName: "saveAllAttachments"
                implicitHeight: Theme.minimumTarget
                text: pane.attachments.saving ? "取消" : pane.attachments.count > 1 ? "全部存储…" : "存储…"
                onClicked: {
                    if (pane.attachments.saving)
                        pane.attachments.cancelSaving();
                    else
                        pane.saveRequested(-1);
                }
            }
            IconButton {
                implicitHeight: Theme.minimumTarget
                visible: pane.compact
                bare: true
                symbol: pane.open ? "chevron-down" : "chevron-up"
                symbolSize: 14
                help: pane.open ? "收起附件" : "显示附件"
                onClicked: pane.open = !pane.open
            }
        }
    }
    FocusGroup {
        y: 41
        width: parent.width
        height: parent.height - y
        visible: pane.open

        GridView {
            id: grid
            x: Theme.margin
            width: parent.width - 2 * x + Theme.space
            height: parent.height
            clip: true
            model: pane.attachments
            cellWidth: width / pane.columns
            cellHeight: pane.tileHeight + Theme.space
            boundsBehavior: Flickable.StopAtBounds
            keyNavigationEnabled: false
            T.ScrollBar.vertical: AppScrollBar {}
            delegate: AttachmentTile {
                id: tile
                objectName: "attachmentTile" + index
                width: grid.cellWidth - Theme.space
                height: pane.tileHeight
                onOpenRequested: pane.attachments.open(tile.index)
                onMenuRequested: {
                    tileMenu.row = tile.index;
                    tileMenu.popup(tile, 12, tile.height);
                }
            }
        }
    }
    AppMenu {
        id: tileMenu
        property int row: -1
        AppMenuRow {
            text: "打开"
            onTriggered: pane.attachments.open(tileMenu.row)
        }
        AppMenuRow {
            text: "存储…"
            enabled: !pane.attachments.saving
            onTriggered: pane.saveRequested(tileMenu.row)
        }
        AppMenuRow {
            text: "全部存储…"
            enabled: !pane.attachments.saving
            onTriggered: pane.saveRequested(-1)
        }
    }
}
