// The tree account, year, folder with its ticks. A click on the box or Space ticks, a click on the row selects; Left and
// Right close and open, or go to the parent and the first child.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

FocusGroup {
    id: group

    required property HomeScreen home
    readonly property OrganizeTreeModel tree: home.tree
    // A click or an arrow has chosen the current row.
    property bool hasCurrent: false

    horizontal: false
    vertical: false

    function moveTo(row: int) {
        if (list.count === 0)
            return;
        list.currentIndex = Math.max(0, Math.min(list.count - 1, row));
        hasCurrent = true;
        list.positionViewAtIndex(list.currentIndex, ListView.Contain);
    }
    function pageRows(): int {
        return Math.max(1, Math.floor(list.height / Theme.treeYearRow) - 1);
    }
    function closeOrGoToParent() {
        const row = list.currentItem as OrganizeTreeRow;
        if (row && row.expandable && row.expanded)
            tree.setExpanded(list.currentIndex, false);
        else if (tree.parentRow(list.currentIndex) >= 0)
            moveTo(tree.parentRow(list.currentIndex));
    }
    function openOrGoToChild() {
        const row = list.currentItem as OrganizeTreeRow;
        if (row && row.expandable && !row.expanded)
            tree.setExpanded(list.currentIndex, true);
        else if (tree.firstChildRow(list.currentIndex) >= 0)
            moveTo(tree.firstChildRow(list.currentIndex));
    }

    Rectangle {
        anchors.fill: parent
        // Only the upper corners are round: the list goes on below the bar.
        anchors.bottomMargin: -Theme.radiusLarge
        radius: Theme.radiusLarge
        color: Theme.surface
        border.color: Theme.line
    }
    OrganizeTreeHead {
        id: head
        x: 1
        y: 1
        width: parent.width - 2
        tree: group.tree
    }
    ListView {
        id: list
        objectName: "organizeTree"
        anchors.top: head.bottom
        // The first row brings the line itself.
        anchors.topMargin: -Theme.hairline
        anchors.bottom: parent.bottom
        x: 1
        width: parent.width - 2
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        model: group.tree
        currentIndex: 0
        highlightMoveDuration: 0
        cacheBuffer: 400
        Accessible.role: Accessible.Tree
        Accessible.name: "邮箱、年份与文件夹"
        T.ScrollBar.vertical: AppScrollBar {}

        Keys.onUpPressed: group.moveTo(group.hasCurrent ? currentIndex - 1 : 0)
        Keys.onDownPressed: group.moveTo(group.hasCurrent ? currentIndex + 1 : 0)
        Keys.onLeftPressed: group.closeOrGoToParent()
        Keys.onRightPressed: group.openOrGoToChild()
        Keys.onSpacePressed: group.tree.toggleTick(currentIndex)
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
                group.tree.tickAll();
            else
                return;
            event.accepted = true;
        }

        delegate: OrganizeTreeRow {
            required property int index
            objectName: "treeRow" + index
            width: ListView.view.width
            current: ListView.isCurrentItem
            chosen: current && group.hasCurrent
            listFocused: list.activeFocus
            onTickPressed: group.tree.toggleTick(index)
            onExpandPressed: group.tree.setExpanded(index, !expanded)
            onChosenByPointer: {
                group.moveTo(index);
                list.forceActiveFocus(Qt.MouseFocusReason);
            }
            onHeldChanged: group.home.setHeld(held)
        }
    }
}
