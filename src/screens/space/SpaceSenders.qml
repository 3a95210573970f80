// The largest senders of one account: a click on the box or Space ticks, all selected rows with it.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Item {
    id: pane

    required property SpaceScreen screen
    property bool narrow: false
    property int margin: Theme.margin

    signal closed

    FocusGroup {
        id: head
        width: parent.width
        height: headColumn.implicitHeight + 28

        ColumnLayout {
            id: headColumn
            x: pane.margin
            y: 16
            width: parent.width - 2 * x
            spacing: 0

            RowLayout {
                Layout.fillWidth: true
                spacing: 8

                AppText {
                    objectName: "spaceAccountTitle"
                    Layout.fillWidth: true
                    text: pane.screen.chosen.title
                    role: AppText.Heading
                    elide: Text.ElideMiddle
                    Accessible.role: Accessible.Heading
                }
                IconButton {
                    objectName: "closeSpaceAccount"
                    implicitHeight: Theme.controlHeightPane
                    symbol: "x"
                    help: "收起发件人"
                    onClicked: {
                        pane.screen.closeAccount();
                        pane.closed();
                    }
                }
            }
            AppText {
                objectName: "spaceCountLine"
                Layout.fillWidth: true
                text: pane.screen.chosen.countLine
                color: Theme.text2
            }
            AppText {
                Layout.fillWidth: true
                Layout.topMargin: 2
                text: pane.screen.note
                role: AppText.Note
                color: Theme.text3
            }
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: Theme.hairline
            color: Theme.line
        }
    }
    FocusGroup {
        anchors.top: head.bottom
        anchors.bottom: bar.top
        width: parent.width
        horizontal: false
        vertical: false

        SelectableList {
            id: list
            objectName: "spaceSenders"
            anchors.fill: parent
            focus: true
            reuseItems: true
            model: pane.screen.senders
            selection: pane.screen.senders.selection
            rowHeight: 46
            Accessible.role: Accessible.List
            Accessible.name: "发件人"

            Keys.onPressed: event => {
                event.accepted = true;
                if (handleKey(event.key, event.modifiers))
                    return;
                if (event.key === Qt.Key_Space)
                    pane.screen.toggleTicks(keyRow);
                else if (event.matches(StandardKey.SelectAll))
                    pane.screen.setAllTicks(true);
                else if (event.matches(StandardKey.Copy))
                    pane.screen.copySenders();
                else
                    event.accepted = false;
            }

            delegate: SpaceSenderRow {
                required property int index
                objectName: "spaceSender" + index
                width: list.width
                margin: pane.margin
                narrow: pane.narrow
                current: list.keyRow === index
                listFocused: list.focused
                onClicked: modifiers => list.press(index, modifiers)
                onTickPressed: pane.screen.toggleTick(index)
            }
        }
        EmptyState {
            anchors.fill: parent
            visible: list.count === 0
            quiet: true
            symbol: "mails"
            title: "这个邮箱在本机没有已下载的邮件"
        }
    }
    BottomBar {
        id: bar
        anchors.bottom: parent.bottom
        width: parent.width
        margin: pane.margin
        implicitHeight: 63
        height: implicitHeight

        RowLayout {
            anchors.fill: parent
            spacing: 12

            TickBox {
                objectName: "tickAllSenders"
                visible: list.count > 0
                tick: pane.screen.chosen.tickState
                name: tick === 1 ? "取消选择全部发件人" : "选择全部发件人"
                onClicked: pane.screen.setAllTicks(tick !== 1)
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0

                AppText {
                    objectName: "tickedTitle"
                    Layout.fillWidth: true
                    text: pane.screen.chosen.tickedTitle
                    font.weight: Theme.strong
                }
                AppText {
                    objectName: "tickedLine"
                    Layout.fillWidth: true
                    text: pane.screen.chosen.tickedLine
                    role: AppText.Note
                    color: Theme.text2
                }
            }
            PrimaryButton {
                objectName: "backUpButton"
                enabled: pane.screen.canBackUp
                text: pane.screen.backUpTitle
                onClicked: pane.screen.backUp()
            }
        }
    }
}
