// One account of the archived overview: its years with folders and mail, and the way to the guide.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

Sheet {
    id: sheet

    required property ArchivedScreen screen
    readonly property AccountDetail detail: screen.detail
    readonly property bool wanted: detail.isOpen
    readonly property bool awaits: detail.awaitingText.length > 0 && !detail.hasGuide

    objectName: "accountDetailSheet"
    title: detail.title
    subtitle: detail.subtitle
    figure: detail.freeable
    figureCaption: "可释放空间"
    figureKind: screen.check.isEarlier ? "" : "safe"
    wantedWidth: 860
    wantedHeight: 792
    scrolls: false
    bodyGap: 0
    barKind: detail.hasGuide && !screen.check.isEarlier ? "safe" : ""
    note: detail.hasGuide ? "想一次删掉这些已备份的邮件?" : awaits ? "还有 " + detail.awaitingText + "没有核对" : ""
    noteLine: detail.hasGuide ? "建一个智能邮箱把它们集中起来,在 Mail 里全选删除、释放空间。"
        : awaits ? "与归档副本逐字节核对之后，才知道哪些可以删除。" : ""
    primary: detail.hasGuide || awaits ? guideButton : closeButton
    onWantedChanged: visible = wanted
    Component.onCompleted: visible = wanted
    onAboutToHide: if (wanted) detail.close()

    fillingItems: FocusGroup {
        id: group

        readonly property AccountRowsModel rows: sheet.detail.rows

        anchors.fill: parent
        horizontal: false
        vertical: false

        function closeOrGoToParent() {
            const row = list.itemAtIndex(list.keyRow) as AccountDetailRow;
            if (row && row.expandable && row.expanded)
                rows.setExpanded(list.keyRow, false);
            else if (rows.parentRow(list.keyRow) >= 0)
                list.go(rows.parentRow(list.keyRow), Qt.NoModifier);
        }
        function openOrGoToChild() {
            const row = list.itemAtIndex(list.keyRow) as AccountDetailRow;
            if (row && row.expandable && !row.expanded)
                rows.setExpanded(list.keyRow, true);
            else if (rows.firstChildRow(list.keyRow) >= 0)
                list.go(rows.firstChildRow(list.keyRow), Qt.NoModifier);
        }

        Rectangle {
            anchors.fill: parent
            // Only the upper corners are round: the list goes on below the bar.
            anchors.bottomMargin: -Theme.radiusLarge
            radius: Theme.radiusLarge
            color: Theme.surface
            border.color: Theme.line
        }
        Rectangle {
            id: head
            x: 1
            y: 1
            width: parent.width - 2
            height: Theme.tableHeadHeight
            radius: Theme.radiusLarge - 1
            color: Theme.page

            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: parent.radius
                color: parent.color
            }
            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: Theme.hairline
                color: Theme.line
            }
            Repeater {
                model: [
                    { text: "年份", from: 42, end: false },
                    { text: "状态", from: 130, end: false },
                    { text: "在 Mail", from: 232, end: true },
                    { text: "已删", from: 128, end: true },
                    { text: "可释放", from: 16, end: true }
                ]
                delegate: AppText {
                    required property var modelData
                    x: modelData.end ? head.width - modelData.from - width : modelData.from
                    anchors.verticalCenter: parent.verticalCenter
                    text: modelData.text
                    role: AppText.Note
                    color: Theme.text3
                }
            }
        }
        SelectableList {
            id: list
            objectName: "accountRows"
            anchors.top: head.bottom
            anchors.bottom: parent.bottom
            x: 1
            width: parent.width - 2
            focus: true
            reuseItems: true
            model: group.rows
            selection: group.rows.selection
            rowHeight: 36
            Accessible.role: Accessible.Tree
            Accessible.name: "年份、文件夹与邮件"

            Keys.onLeftPressed: group.closeOrGoToParent()
            Keys.onRightPressed: group.openOrGoToChild()
            Keys.onPressed: event => event.accepted = handleKey(event.key, event.modifiers)

            delegate: AccountDetailRow {
                required property int index
                objectName: "accountRow" + index
                width: list.width
                current: list.keyRow === index
                listFocused: list.focused
                onClicked: modifiers => {
                    list.press(index, modifiers);
                    if (expandable)
                        group.rows.setExpanded(index, !expanded);
                }
                onLocatePressed: sheet.detail.locateOriginal(index)
            }
        }
        Notice {
            id: notice
            area: group
        }
        Connections {
            target: sheet.detail
            function onFailed(text: string) {
                notice.show(text);
            }
        }
    }
    barItems: [
        PlainButton {
            objectName: "collectAccount"
            text: "地址合集…"
            onClicked: sheet.screen.collect()
        },
        AppButton {
            id: closeButton
            objectName: "closeDetailButton"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "关闭"
            onClicked: sheet.close()
        },
        PrimaryButton {
            id: guideButton
            objectName: "guideButton"
            visible: sheet.detail.hasGuide || sheet.awaits
            enabled: sheet.detail.hasGuide || !sheet.screen.proof.isRunning
            text: sheet.detail.hasGuide ? "建立智能邮箱" : sheet.screen.proof.isRunning ? "正在核对 " + sheet.screen.proof.count
                : "开始核对"
            onClicked: sheet.detail.hasGuide ? sheet.screen.openGuide() : sheet.screen.proof.start()
        }
    ]
}
