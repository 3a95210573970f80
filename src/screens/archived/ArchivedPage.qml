// The screen 已归档概览: what may be deleted from Mail, how much room that frees, and what to do before.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

ScreenPage {
    id: page

    readonly property ArchivedScreen screen: app.archived
    readonly property bool isListed: screen.state === ArchivedScreen.Listed

    objectName: "archivedPage"
    hasOwnRefresh: true
    onRefreshRequested: screen.check.run()
    onShown: screen.open()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ScreenHead {
            Layout.fillWidth: true
            title: "已归档概览"
            subtitle: "一眼看清每个邮箱能释放多少空间，点开去处理。"
            low: page.low
            margin: page.margin

            AppText {
                objectName: "checkedText"
                visible: !page.narrow && text.length > 0
                text: page.screen.check.doneText
                role: AppText.Note
                color: Theme.text3
            }
            AppButton {
                objectName: "checkButton"
                visible: page.isListed
                enabled: page.screen.check.canRun
                symbol: "refresh-cw"
                text: page.screen.check.isRunning ? "正在检查…" : "重新检查"
                help: "重新对照 Mail，更新“在 Mail / 已删 / 待确认”状态。"
                onClicked: page.screen.check.run()
            }
        }
        Line {
            Layout.fillWidth: true
            Layout.leftMargin: page.margin
            Layout.rightMargin: page.margin
            visible: page.isListed
        }
        Banner {
            objectName: "accessBanner"
            Layout.fillWidth: true
            Layout.topMargin: 12
            Layout.leftMargin: page.margin
            Layout.rightMargin: page.margin
            visible: page.isListed && page.screen.needsAccess
            compact: page.low
            kind: "attention"
            headline: "没有完整磁盘访问权限"
            lines: ["归档的邮件不受影响；授权之后才能知道哪些原件还在 Mail 里。"]

            AppButton {
                objectName: "accessButton"
                text: "打开权限设置"
                onClicked: page.screen.access.openPrivacySettings()
            }
        }
        FocusGroup {
            Layout.fillWidth: true
            Layout.leftMargin: page.margin
            Layout.rightMargin: page.margin
            visible: page.isListed
            implicitHeight: figures.implicitHeight + (page.low ? 20 : 40)

            RowLayout {
                id: figures
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width
                spacing: page.narrow ? 24 : 40

                OverviewHeroPane {
                    Layout.preferredWidth: page.narrow ? 290 : 312
                    Layout.maximumWidth: Layout.preferredWidth
                    Layout.alignment: Qt.AlignVCenter
                    screen: page.screen
                    low: page.low
                    onUpdateRequested: page.app.refreshAllMailData()
                }
                HoldingsPane {
                    Layout.fillWidth: true
                    Layout.alignment: Qt.AlignVCenter
                    screen: page.screen
                    low: page.low
                }
            }
        }
        Line {
            Layout.fillWidth: true
            Layout.leftMargin: page.margin
            Layout.rightMargin: page.margin
            visible: page.isListed
        }
        FocusGroup {
            Layout.fillWidth: true
            Layout.leftMargin: page.margin
            Layout.rightMargin: page.margin
            visible: page.isListed
            implicitHeight: page.low ? 44 : 56

            AppText {
                id: accountsTitle
                anchors.verticalCenter: parent.verticalCenter
                text: "邮箱"
                role: AppText.Heading
                Accessible.role: Accessible.Heading
            }
            PlainButton {
                objectName: "collectButton"
                anchors.left: accountsTitle.right
                anchors.leftMargin: Theme.space
                anchors.verticalCenter: parent.verticalCenter
                text: "地址合集…"
                help: "把几个邮箱或地址的归档邮件归在一个名称下面"
                onClicked: page.screen.collect()
            }
            SegmentedControl {
                objectName: "archivedFilter"
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                name: "按状态筛选"
                options: ["全部", "可清理", "已删除"]
                currentIndex: page.screen.filter
                onActivated: index => page.screen.filter = index
            }
        }
        FocusGroup {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: page.isListed
            focus: page.isListed
            horizontal: false
            vertical: false

            SelectableList {
                id: list
                objectName: "archivedAccounts"
                anchors.fill: parent
                visible: count > 0
                focus: true
                model: page.screen.accounts
                selection: page.screen.accounts.selection
                rowHeight: 115
                reuseItems: true
                Accessible.role: Accessible.List
                Accessible.name: "邮箱"

                Keys.onReturnPressed: page.screen.openAccount(keyRow)
                Keys.onEnterPressed: page.screen.openAccount(keyRow)
                Keys.onPressed: event => event.accepted = handleKey(event.key, event.modifiers)

                delegate: ArchivedAccountRow {
                    required property int index
                    objectName: "archivedAccount" + index
                    width: list.width
                    margin: page.margin
                    muted: page.screen.check.isEarlier
                    current: list.keyRow === index
                    listFocused: list.focused
                    onClicked: modifiers => {
                        list.press(index, modifiers);
                        page.screen.openAccount(index);
                    }
                }
            }
            EmptyState {
                objectName: "noAccounts"
                anchors.fill: parent
                visible: list.count === 0
                quiet: true
                symbol: "list-filter"
                title: page.screen.filter === 1 ? "还没有可以清理的年份" : "没有已从 Mail 删除的邮件"
            }
        }
        EmptyState {
            objectName: "archivedEmpty"
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: !page.isListed
            focus: !page.isListed
            readonly property bool isLoading: page.screen.state === ArchivedScreen.Loading
            symbol: isLoading ? "loader-circle" : "shield-check"
            quiet: isLoading
            title: isLoading ? "正在读取归档库…" : "还没有归档邮件"
            line: isLoading ? "" : "去「归档邮件」把邮件放入归档库后，这里会按邮箱、文件夹和年份显示。"
            buttonText: isLoading ? "" : "去归档邮件"
            onActivated: page.placeRequested("home")
        }
        YearCellLegend {
            Layout.fillWidth: true
            visible: page.isListed
            margin: page.margin
        }
    }
    Notice {
        id: notice
        area: page
    }
    Connections {
        target: page.screen.access
        function onFailed(text: string) {
            notice.show(text);
        }
    }
    OnDemand {
        source: Qt.resolvedUrl("account/AccountDetailSheet.qml")
        properties: ({ screen: page.screen })
        wanted: page.screen.detail.isOpen
    }
    OnDemand {
        source: Qt.resolvedUrl("guide/GuideSheet.qml")
        properties: ({ guide: page.screen.guide })
        wanted: page.screen.guide.isOpen
    }
}
