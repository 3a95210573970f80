// The candidates with their ticks. Space ticks, all selected rows with the current one; a click on the box ticks, with
// Shift everything from the last one on. A click on the row selects.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

FocusGroup {
    id: group

    required property ArchiveScreen archive
    readonly property ArchiveCandidatesModel candidates: archive.candidates

    horizontal: false
    vertical: false
    // As high as its rows, with room for what is said in their place.
    implicitHeight: Math.max(200, Theme.tableHeadHeight + 1 + list.count * Theme.rowDense + Theme.space)

    function tick(row: int, modifiers: int) {
        if (modifiers & Qt.ShiftModifier)
            candidates.tickRange(row);
        else
            candidates.toggleTick(row);
    }

    Rectangle {
        width: parent.width
        // Few rows end with their box; else only its upper corners are seen, and the list goes on below the bar.
        height: list.count === 0 ? parent.height
            : Math.min(parent.height, head.height + list.contentHeight) + Theme.radiusLarge
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
            text: group.archive.confirmation.isLoading ? "正在列出邮件…" : group.archive.confirmation.tickedText
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
    SelectableList {
        id: list
        objectName: "candidateList"
        anchors.top: head.bottom
        anchors.bottom: parent.bottom
        x: 1
        width: parent.width - 2
        focus: true
        reuseItems: true
        model: group.candidates
        selection: group.candidates.selection
        Accessible.role: Accessible.List
        Accessible.name: "要归档的邮件"

        Keys.onPressed: event => {
            event.accepted = true;
            if (handleKey(event.key, event.modifiers))
                return;
            if (event.key === Qt.Key_Space && event.modifiers & Qt.ShiftModifier)
                group.candidates.tickRange(keyRow);
            else if (event.key === Qt.Key_Space)
                group.candidates.toggleTicks(keyRow);
            else if (event.matches(StandardKey.SelectAll))
                group.candidates.tickAll();
            else if (event.matches(StandardKey.Copy))
                group.candidates.copySelection();
            else
                event.accepted = false;
        }

        delegate: CandidateRow {
            width: ListView.view.width
            model: group.candidates
            current: list.keyRow === index
            listFocused: list.focused
            onTickPressed: modifiers => group.tick(index, modifiers)
            onClicked: modifiers => list.press(index, modifiers)
        }
    }
    EmptyState {
        objectName: "noCandidates"
        anchors.fill: parent
        anchors.topMargin: Theme.tableHeadHeight
        visible: list.count === 0 && !group.archive.confirmation.isLoading
        symbolSize: 32
        symbol: height < 150 ? "" : "archive"
        title: group.archive.confirmation.archiveEmptyTitle
        line: group.archive.confirmation.archiveEmptyDescription
    }
}
