// The candidates with their ticks. Space and a click on the box tick; with Shift everything from the last one on.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Corvane

FocusGroup {
    id: group

    required property ArchiveScreen archive
    readonly property ArchiveCandidatesModel candidates: archive.candidates

    horizontal: false
    vertical: false

    function moveTo(row: int) {
        if (list.count === 0)
            return;
        list.currentIndex = Math.max(0, Math.min(list.count - 1, row));
        list.positionViewAtIndex(list.currentIndex, ListView.Contain);
    }
    function pageRows(): int {
        return Math.max(1, Math.floor(list.height / Theme.rowDense) - 1);
    }
    function tick(row: int, modifiers: int) {
        if (modifiers & Qt.ShiftModifier)
            candidates.tickRange(row);
        else
            candidates.toggleTick(row);
    }

    Rectangle {
        anchors.fill: parent
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
        TickBox {
            objectName: "tickAllCandidates"
            x: 11
            anchors.verticalCenter: parent.verticalCenter
            focusPolicy: Qt.NoFocus
            enabled: list.count > 0
            tick: group.candidates.tickState
            name: tick === 1 ? "取消选择全部" : "选择全部"
            onClicked: group.candidates.toggleAllTicks()
        }
        AppText {
            objectName: "tickedText"
            x: 39
            anchors.verticalCenter: parent.verticalCenter
            text: group.archive.isLoading ? "正在列出邮件…" : group.archive.tickedText
            role: AppText.Note
            color: Theme.text3
        }
        AppText {
            anchors.right: parent.right
            anchors.rightMargin: 231
            width: 104
            anchors.verticalCenter: parent.verticalCenter
            text: "发件人"
            role: AppText.Note
            color: Theme.text3
        }
        AppText {
            anchors.right: parent.right
            anchors.rightMargin: 95
            anchors.verticalCenter: parent.verticalCenter
            text: "日期"
            role: AppText.Note
            color: Theme.text3
        }
        AppText {
            anchors.right: parent.right
            anchors.rightMargin: 15
            anchors.verticalCenter: parent.verticalCenter
            text: "体积"
            role: AppText.Note
            color: Theme.text3
        }
    }
    ListView {
        id: list
        objectName: "candidateList"
        anchors.top: head.bottom
        anchors.bottom: parent.bottom
        x: 1
        width: parent.width - 2
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: false
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        model: group.candidates
        currentIndex: 0
        highlightMoveDuration: 0
        Accessible.role: Accessible.List
        Accessible.name: "要归档的邮件"
        T.ScrollBar.vertical: AppScrollBar {}

        Keys.onUpPressed: group.moveTo(currentIndex - 1)
        Keys.onDownPressed: group.moveTo(currentIndex + 1)
        Keys.onSpacePressed: event => group.tick(currentIndex, event.modifiers)
        Keys.onPressed: event => {
            if (event.key === Qt.Key_Home)
                group.moveTo(0);
            else if (event.key === Qt.Key_End)
                group.moveTo(count - 1);
            else if (event.key === Qt.Key_PageUp)
                group.moveTo(currentIndex - group.pageRows());
            else if (event.key === Qt.Key_PageDown)
                group.moveTo(currentIndex + group.pageRows());
            else if (event.matches(StandardKey.SelectAll))
                group.candidates.tickAll();
            else
                return;
            event.accepted = true;
        }

        delegate: CandidateRow {
            width: ListView.view.width
            model: group.candidates
            current: ListView.isCurrentItem
            listFocused: list.activeFocus
            onTickPressed: modifiers => group.tick(index, modifiers)
            onChosen: {
                group.moveTo(index);
                list.forceActiveFocus(Qt.MouseFocusReason);
            }
        }
    }
    EmptyState {
        objectName: "noCandidates"
        anchors.fill: parent
        anchors.topMargin: Theme.tableHeadHeight
        visible: list.count === 0 && !group.archive.isLoading
        symbolSize: 32
        symbol: height < 150 ? "" : "archive"
        title: group.archive.archiveEmptyTitle
        line: group.archive.archiveEmptyDescription
    }
}
