// The middle of the mail list: what is listed and in which order, the chips of filters that have no pane, the rows.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

FocusScope {
    id: pane

    required property MailListScreen screen
    // The filters have no pane of their own: a button opens them, chips show them.
    property bool showsFilterButton: false
    property alias view: rows
    readonly property bool pressed: pointer.active || rows.dragged

    signal filtersRequested(Item button)
    signal menuRequested(real x, real y)
    signal pageRequested(bool forward)

    FocusGroup {
        id: chipBar
        width: parent.width
        height: visible ? Math.max(chips.implicitHeight, Theme.space + Theme.controlHeightPane) : 0
        visible: pane.showsFilterButton

        AppButton {
            id: filterButton
            objectName: "filterButton"
            x: Theme.section
            y: Theme.space
            implicitHeight: Theme.controlHeightPane
            symbol: "list-filter"
            text: "筛选"
            help: "按邮箱、附件和年份筛选"
            onClicked: pane.filtersRequested(filterButton)
        }
        Flow {
            id: chips
            readonly property int rowTop: 12
            anchors.left: filterButton.right
            anchors.leftMargin: Theme.space
            anchors.right: parent.right
            anchors.rightMargin: Theme.section
            topPadding: rowTop
            spacing: Theme.space

            Repeater {
                model: pane.screen.filters.chips
                delegate: FilterChip {
                    required property int index
                    required property string modelData
                    objectName: "filterChip" + index
                    width: Math.min(implicitWidth, 130)
                    text: modelData
                    onClicked: {
                        // It goes with its filter.
                        if (activeFocus)
                            filterButton.forceActiveFocus(Qt.TabFocusReason);
                        pane.screen.filters.removeChip(index);
                    }
                }
            }
        }
    }

    FocusGroup {
        id: toolbar
        y: chipBar.height
        width: parent.width
        height: Theme.toolbarHeight

        RowLayout {
            anchors.fill: parent
            anchors.bottomMargin: Theme.hairline
            anchors.leftMargin: Theme.section
            anchors.rightMargin: Theme.section
            spacing: Theme.space

            AppText {
                objectName: "listSummary"
                Layout.fillWidth: true
                text: pane.screen.selectionText.length > 0 ? pane.screen.selectionText + "，共 " + pane.screen.summaryText
                    : pane.screen.summaryText
                color: Theme.text2
            }
            SegmentedControl {
                objectName: "sortMode"
                implicitHeight: Theme.controlHeightPane
                segmentPadding: 10
                name: "排序"
                options: ["最新", "邮件体积"]
                currentIndex: pane.screen.filters.sortMode
                onActivated: index => pane.screen.filters.sortMode = index
            }
            IconButton {
                objectName: "sortDirection"
                readonly property bool ascending: pane.screen.filters.ascending
                implicitHeight: Theme.controlHeightPane
                symbol: ascending ? "arrow-up-narrow-wide" : "arrow-down-wide-narrow"
                help: pane.screen.filters.sortMode === 1 ? (ascending ? "从小到大，点击改为从大到小" : "从大到小，点击改为从小到大")
                    : ascending ? "从旧到新，点击改为从新到旧" : "从新到旧，点击改为从旧到新"
                onClicked: pane.screen.filters.ascending = !ascending
            }
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: Theme.hairline
            color: Theme.line
        }
    }

    MessageView {
        id: rows
        anchors.top: toolbar.bottom
        anchors.bottom: partialNote.top
        width: parent.width
        focus: true
        screen: pane.screen
        onOpened: pane.screen.actions.openInMail()
        onMenuRequested: (x, y) => pane.menuRequested(x, rows.y + y)
        onPageRequested: forward => pane.pageRequested(forward)
    }

    FocusGroup {
        id: partialNote
        anchors.bottom: parent.bottom
        width: parent.width
        height: visible ? 52 : 0
        visible: pane.screen.partialText.length > 0

        Rectangle {
            width: parent.width
            height: Theme.hairline
            color: Theme.line
        }
        Symbol {
            x: 12
            anchors.verticalCenter: parent.verticalCenter
            size: 16
            name: "cloud-download"
            color: Theme.text2
        }
        AppText {
            objectName: "partialMail"
            x: 38
            width: howButton.x - x
            anchors.verticalCenter: parent.verticalCenter
            text: pane.screen.partialText
            role: AppText.Note
            wrapMode: Text.Wrap
            maximumLineCount: 2
            color: Theme.text2
        }
        PlainButton {
            id: howButton
            objectName: "showPartialHelp"
            anchors.right: parent.right
            anchors.rightMargin: Theme.section - horizontalPadding
            anchors.verticalCenter: parent.verticalCenter
            implicitHeight: Theme.controlHeightPane
            text: "怎样补全"
            onClicked: partialHelp.open()
        }
        PartialMailHelp {
            id: partialHelp
        }
    }

    // Above the rows and without taking anything from them: what the pointer is on, for all rows at once.
    Item {
        anchors.fill: rows

        PointHandler {
            id: pointer
            acceptedButtons: Qt.AllButtons
        }
        HoverHandler {
            id: hover
            onPointChanged: tip.pointerAt = Qt.point(point.position.x, point.position.y)
        }
        // Rows that move, by keys or the wheel, don't call for a tooltip: the pointer does when it moves.
        Connections {
            target: rows
            function onContentYChanged() {
                tip.outdated = true;
            }
        }
        Connections {
            target: rows.selection
            function onCurrentRowChanged() {
                tip.outdated = true;
            }
        }
        AppToolTip {
            id: tip
            property point pointerAt
            property bool outdated: false
            onPointerAtChanged: outdated = false
            readonly property MessageRow row: hover.hovered
                ? rows.itemAt(hover.point.position.x, hover.point.position.y + rows.contentY) as MessageRow : null
            readonly property real rowTop: row ? row.y - rows.contentY : 0
            text: row ? row.elidedAt(hover.point.position.y - rowTop) : ""
            shown: text.length > 0 && !outdated && !rows.moving && !pane.pressed
            x: 38
            y: rowTop + Theme.rowFull
        }
    }

    EmptyState {
        objectName: "noMatch"
        anchors.centerIn: rows
        width: parent.width - 2 * Theme.margin
        visible: pane.screen.state === MailListScreen.NoMatch
        symbol: "list-filter"
        symbolSize: 32
        title: "没有符合条件的邮件"
        line: "换一个搜索词，或者放宽筛选条件。"
        buttonText: "清除筛选"
        onActivated: pane.screen.filters.clear()
    }
    EmptyState {
        objectName: "nothingLocal"
        anchors.centerIn: rows
        width: parent.width - 2 * Theme.margin
        visible: pane.screen.state === MailListScreen.NothingLocal
        symbol: "cloud"
        symbolSize: 32
        title: "本机没有保存这些邮件"
        line: "它们可能只在服务器上。请先在 Apple Mail 里下载，再更新 Mail 数据。"
    }
}
