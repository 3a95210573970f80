// The tree account, year, folder with its ticks. A click on the box or Space ticks, all selected rows with it; a click on
// the row selects; Left and Right close and open, or go to the parent and the first child.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

FocusGroup {
    id: group

    required property HomeScreen home
    readonly property OrganizeTreeModel tree: home.tree

    horizontal: false
    vertical: false

    function closeOrGoToParent() {
        const at = list.keyRow;
        const row = list.itemAtIndex(at) as OrganizeTreeRow;
        if (row && row.expandable && row.expanded)
            tree.setExpanded(at, false);
        else if (tree.parentRow(at) >= 0)
            list.go(tree.parentRow(at), Qt.NoModifier);
    }
    function openOrGoToChild() {
        const at = list.keyRow;
        const row = list.itemAtIndex(at) as OrganizeTreeRow;
        if (row && row.expandable && !row.expanded)
            tree.setExpanded(at, true);
        else if (tree.firstChildRow(at) >= 0)
            list.go(tree.firstChildRow(at), Qt.NoModifier);
    }

    Rectangle {
        width: parent.width
        // Few rows end with their box; else only its upper corners are seen, and the list goes on below the bar.
        height: Math.min(parent.height, head.height + list.contentHeight) + Theme.radiusLarge
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
    SelectableList {
        id: list
        objectName: "organizeTree"
        anchors.top: head.bottom
        // The first row brings the line itself.
        anchors.topMargin: -Theme.hairline
        anchors.bottom: parent.bottom
        x: 1
        width: parent.width - 2
        focus: true
        model: group.tree
        selection: group.tree.selection
        rowHeight: Theme.treeYearRow
        cacheBuffer: 400
        Accessible.role: Accessible.Tree
        Accessible.name: "邮箱、年份与文件夹"

        Keys.onLeftPressed: group.closeOrGoToParent()
        Keys.onRightPressed: group.openOrGoToChild()
        Keys.onPressed: event => {
            event.accepted = true;
            if (handleKey(event.key, event.modifiers))
                return;
            if (event.key === Qt.Key_Space)
                group.tree.toggleTicks(keyRow);
            else if (event.matches(StandardKey.SelectAll))
                group.tree.tickAll();
            else if (event.matches(StandardKey.Copy))
                group.home.copyTreeRows();
            else
                event.accepted = false;
        }

        delegate: OrganizeTreeRow {
            required property int index
            objectName: "treeRow" + index
            width: ListView.view.width
            current: list.keyRow === index
            listFocused: list.focused
            onTickPressed: group.tree.toggleTick(index)
            onExpandPressed: group.tree.setExpanded(index, !expanded)
            onClicked: modifiers => list.press(index, modifiers)
            onHeldChanged: group.home.setHeld(held)
        }
    }
}
