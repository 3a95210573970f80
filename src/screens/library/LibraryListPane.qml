// The left of the library: what is listed and in which order, the strip of years, the rows.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

FocusScope {
    id: pane

    required property LibraryScreen screen
    property bool low: false
    property alias view: rows
    readonly property bool pressed: pointer.active || rows.dragged

    signal menuRequested(real x, real y)
    signal pageRequested(bool forward)

    FocusGroup {
        id: toolbar
        width: parent.width
        height: Theme.toolbarHeight

        RowLayout {
            anchors.fill: parent
            anchors.bottomMargin: Theme.hairline
            anchors.leftMargin: Theme.section
            anchors.rightMargin: Theme.section
            spacing: Theme.space

            AppText {
                objectName: "librarySummary"
                Layout.fillWidth: true
                text: pane.screen.summaryText
                color: Theme.text2
            }
            FilterChip {
                objectName: "yearChip"
                visible: text.length > 0
                text: pane.screen.filters.spanText
                onClicked: {
                    // It goes with its filter.
                    if (activeFocus)
                        rows.forceActiveFocus(Qt.TabFocusReason);
                    pane.screen.filters.clearYears();
                }
            }
            AppButton {
                objectName: "librarySort"
                implicitHeight: Theme.controlHeightPane
                symbol: pane.screen.ascending ? "arrow-up-narrow-wide" : "arrow-down-wide-narrow"
                symbolSize: 14
                text: pane.screen.ascending ? "最早在前" : "最新在前"
                help: pane.screen.ascending ? "点击改为最新在前" : "点击改为最早在前"
                onClicked: pane.screen.ascending = !pane.screen.ascending
            }
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: Theme.hairline
            color: Theme.line
        }
    }
    YearStrip {
        id: strip
        anchors.top: toolbar.bottom
        width: parent.width
        height: visible ? implicitHeight : 0
        visible: !pane.low && count > 1
        filters: pane.screen.filters
    }
    RowLayout {
        id: searchNote
        anchors.top: strip.bottom
        x: Theme.section
        width: parent.width - 2 * x
        height: visible ? Theme.rowDense : 0
        visible: noteText.text.length > 0

        AppText {
            id: noteText
            objectName: "searchNote"
            Layout.fillWidth: true
            text: pane.screen.search.note
            role: AppText.Note
            color: Theme.attention
        }
        PlainButton {
            objectName: "prepareSearch"
            visible: pane.screen.search.canPrepare
            text: "建立搜索索引"
            onClicked: pane.screen.search.prepare()
        }
    }
    LibraryView {
        id: rows
        anchors.top: searchNote.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        focus: true
        screen: pane.screen
        onOpened: pane.screen.actions.openMail()
        onMenuRequested: (x, y) => pane.menuRequested(x, rows.y + y)
        onPageRequested: forward => pane.pageRequested(forward)
    }
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
        AppToolTip {
            id: tip
            property point pointerAt
            property bool outdated: false
            onPointerAtChanged: outdated = false
            readonly property LibraryRowItem row: hover.hovered
                ? rows.itemAt(hover.point.position.x, hover.point.position.y + rows.contentY) as LibraryRowItem : null
            readonly property real rowTop: row ? row.y - rows.contentY : 0
            text: row ? row.elidedAt(hover.point.position.y - rowTop) : ""
            shown: text.length > 0 && !outdated && !rows.moving && !pane.pressed
            x: 36
            y: rowTop + (row ? row.height : 0)
        }
    }
    EmptyState {
        objectName: "libraryNoMatch"
        anchors.centerIn: rows
        width: parent.width - 2 * Theme.margin
        visible: pane.screen.state === LibraryScreen.NoMatch
        symbol: "list-filter"
        symbolSize: 32
        title: "没有符合条件的邮件"
        line: "换一个搜索词，或者放宽筛选条件。"
        buttonText: "清除筛选"
        onActivated: {
            pane.screen.filters.clear();
            rows.forceActiveFocus(Qt.TabFocusReason);
        }
    }
}
