// The rows of the library: what keys and the pointer make of them, and the place that is kept when the list changes.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

SelectableList {
    id: view

    required property LibraryScreen screen

    // Where the view stands: its first row and how far that is scrolled out.
    property int anchorRow: -1
    property real anchorOffset: 0
    // Untyped: Qt 6.4 compiles what reads an item's place after a test for null into what crashes.
    property var itemLookedAt: null

    signal opened
    signal menuRequested(real x, real y)
    signal pageRequested(bool forward)

    function rememberPlace() {
        anchorRow = indexAt(10, contentY + 1);
        itemLookedAt = itemAtIndex(anchorRow);
        anchorOffset = itemLookedAt ? contentY - itemLookedAt.y : 0;
    }
    // Rows that have gone leave the place to the next one that is still there; another list begins at its top.
    function restorePlace() {
        forceLayout();
        for (let row = anchorRow; row >= 0 && row < anchorRow + 50; ++row) {
            const next = screen.list.rowAfterChange(row);
            if (next < 0)
                continue;
            positionViewAtIndex(next, ListView.Beginning);
            if (row === anchorRow)
                contentY += anchorOffset;
            returnToBounds();
            return;
        }
        positionViewAtBeginning();
    }
    function requestMenu() {
        showCurrent();
        itemLookedAt = itemAtIndex(selection.currentRow);
        if (itemLookedAt)
            menuRequested(48, itemLookedAt.y - contentY + 40);
    }

    objectName: "libraryView"
    model: screen.list
    selection: screen.selection
    rowHeight: Theme.rowRegular
    reuseItems: true
    Accessible.role: Accessible.List
    Accessible.name: "归档邮件"

    Keys.onPressed: event => {
        event.accepted = true;
        const deletes = event.key === Qt.Key_Delete || (event.key === Qt.Key_Backspace && event.modifiers & Qt.ControlModifier);
        if (handleKey(event.key, event.modifiers))
            return;
        if (event.key === Qt.Key_Left || event.key === Qt.Key_Right) {
            if (event.key === Qt.Key_Left)
                screen.closeThread(keyRow);
            else
                screen.openThread(keyRow);
            showCurrent();
        } else if (event.key === Qt.Key_Space)
            pageRequested(!(event.modifiers & Qt.ShiftModifier));
        else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            opened();
        else if (deletes && !event.isAutoRepeat)
            screen.actions.removeSelected();
        else if (event.key === Qt.Key_Menu || (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier))
            requestMenu();
        else if (event.matches(StandardKey.SelectAll))
            selection.selectAll();
        else if (event.matches(StandardKey.Copy))
            screen.actions.copyRows();
        else
            event.accepted = false;
    }

    delegate: LibraryRowItem {
        id: row
        width: ListView.view.width
        // Rows outlive the screen by a moment when the window goes.
        current: view.selection !== null && view.selection.currentRow === index
        listFocused: view.focused
        onPressed: (modifiers, button) => {
            // A menu is for all that is selected when it opens on one of them.
            if (button !== Qt.RightButton || !selected)
                view.press(index, modifiers);
        }
        onDoubleClicked: {
            if (isThread)
                view.screen.toggleThread(index);
            else
                view.opened();
        }
        onToggled: view.screen.toggleThread(index)
        onMenuRequested: (x, y) => view.menuRequested(x, row.y - view.contentY + y)
    }

    Connections {
        target: view.screen.list
        function onAboutToChange() {
            view.rememberPlace();
        }
        function onChanged() {
            view.restorePlace();
        }
    }
    Connections {
        target: view.screen
        function onListRearranged() {
            view.showCurrent();
        }
    }
}
