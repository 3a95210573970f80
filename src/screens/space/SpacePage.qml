// The screen Mail 空间: what each account occupies on this machine, and beside it the largest senders of one.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

ScreenPage {
    id: page

    readonly property SpaceScreen screen: app.space
    readonly property bool isListed: screen.state === SpaceScreen.Listed

    objectName: "spacePage"
    onEscaped: screen.closeAccount()
    onShown: screen.open()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ScreenHead {
            Layout.fillWidth: true
            title: "Mail 空间"
            subtitle: "看清每个邮箱占了多少，挑出最占地方的发件人先归档。"
            low: page.low
            margin: page.margin
        }
        Line {
            Layout.fillWidth: true
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: page.isListed
            spacing: 0

            FocusGroup {
                Layout.preferredWidth: page.narrow ? 372 : 472
                Layout.fillWidth: !page.screen.chosen.isThere
                Layout.fillHeight: true
                focus: page.isListed
                horizontal: false
                vertical: false

                ColumnLayout {
                    id: total
                    x: page.margin
                    y: page.low ? 10 : 16
                    width: parent.width - 2 * x
                    spacing: 0

                    AppText {
                        text: "Apple Mail 占用这台 Mac"
                        color: Theme.text2
                    }
                    RowLayout {
                        spacing: 10

                        AppText {
                            objectName: "spaceTotal"
                            text: page.screen.totalSize
                            role: AppText.Hero
                        }
                        AppText {
                            Layout.alignment: Qt.AlignBottom
                            Layout.bottomMargin: 4
                            text: page.screen.totalCount
                            role: AppText.Heading
                            font.weight: Theme.regular
                            color: Theme.text2
                        }
                    }
                    ShareBar {
                        Layout.fillWidth: true
                        Layout.topMargin: page.low ? 4 : 8
                        parts: page.screen.shares
                    }
                }
                SelectableList {
                    id: list
                    objectName: "spaceAccounts"
                    anchors.top: total.bottom
                    anchors.topMargin: page.low ? 12 : 18
                    anchors.bottom: parent.bottom
                    width: parent.width
                    focus: true
                    model: page.screen.accounts
                    selection: page.screen.accounts.selection
                    rowHeight: 104
                    Accessible.role: Accessible.List
                    Accessible.name: "邮箱"

                    Keys.onReturnPressed: page.screen.openAccount(keyRow)
                    Keys.onEnterPressed: page.screen.openAccount(keyRow)
                    Keys.onPressed: event => event.accepted = handleKey(event.key, event.modifiers)

                    delegate: SpaceAccountRow {
                        required property int index
                        objectName: "spaceAccount" + index
                        width: list.width
                        margin: page.margin
                        narrow: page.narrow
                        current: list.keyRow === index
                        listFocused: list.focused
                        onClicked: modifiers => {
                            list.press(index, modifiers);
                            page.screen.openAccount(index);
                        }
                    }
                }
            }
            Line {
                Layout.fillHeight: true
                visible: page.screen.chosen.isThere
            }
            SpaceSenders {
                Layout.fillWidth: true
                Layout.fillHeight: true
                visible: page.screen.chosen.isThere
                screen: page.screen
                narrow: page.narrow
                margin: page.margin
                onClosed: list.forceActiveFocus(Qt.OtherFocusReason)
            }
        }
        EmptyState {
            id: empty
            objectName: "spaceState"
            readonly property int kind: page.screen.state
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: !page.isListed
            focus: !page.isListed
            quiet: kind === SpaceScreen.Loading || kind === SpaceScreen.Scanning
            symbol: kind === SpaceScreen.NoAccess ? "lock" : kind === SpaceScreen.Partial ? "refresh-cw" : "chart-pie"
            title: {
                switch (kind) {
                case SpaceScreen.NoAccess:
                    return "还不能读取你的 Mail";
                case SpaceScreen.NoMail:
                    return "先更新所有 Mail 数据";
                case SpaceScreen.Partial:
                    return "邮件没有全部读完";
                case SpaceScreen.Scanning:
                    return "正在扫描 Mail…";
                default:
                    return "正在计算每个邮箱占用的空间…";
                }
            }
            line: {
                switch (kind) {
                case SpaceScreen.NoAccess:
                    return "授权之后，这里显示每个邮箱在本机占用多少空间。";
                case SpaceScreen.NoMail:
                    return "更新后这里显示每个邮箱占用多少空间，以及最占地方的发件人。";
                case SpaceScreen.Partial:
                    return "继续更新之后才能算出每个邮箱占用的空间。";
                default:
                    return "";
                }
            }
            buttonText: kind === SpaceScreen.NoAccess ? "去授权" : kind === SpaceScreen.NoMail ? "更新 Mail 数据"
                : kind === SpaceScreen.Partial ? "继续更新" : ""
            onActivated: {
                if (kind === SpaceScreen.NoAccess)
                    page.placeRequested("home");
                else
                    page.app.refreshAllMailData();
            }
        }
    }
}
