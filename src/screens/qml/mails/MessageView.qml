// The rows of the mail list: what keys and the pointer make of them, and the place that is kept when the list
// changes.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

ListView {
    id: view

    required property MailListScreen screen
    readonly property ListSelection selection: screen.selection
    readonly property bool focused: activeFocus && Window.active
    readonly property bool dragged: dragging || scrollBar.pressed

    // Where the view stands: its first row and how far that is scrolled out.
    property int anchorRow: -1
    property real anchorOffset: 0

    signal opened
    signal menuRequested(real x, real y)
    signal pageRequested(bool forward)

    function firstRow(): int {
        return count === 0 ? -1 : Math.max(0, Math.min(count - 1, Math.floor((contentY - originY) / Theme.rowFull)));
    }
    function rememberPlace() {
        anchorRow = firstRow();
        anchorOffset = contentY - originY - anchorRow * Theme.rowFull;
    }
    // Rows that have gone leave the place to the next one that is still there.
    function restorePlace() {
        forceLayout();
        for (let row = anchorRow; row >= 0 && row < anchorRow + 50; ++row) {
            const next = screen.list.rowAfterChange(row);
            if (next < 0)
                continue;
            contentY = originY + next * Theme.rowFull + (row === anchorRow ? anchorOffset : 0);
            break;
        }
        returnToBounds();
    }
    function showCurrent() {
        if (selection.currentRow >= 0)
            positionViewAtIndex(selection.currentRow, ListView.Contain);
    }
    function go(row: int, modifiers: int) {
        if (modifiers & Qt.ShiftModifier)
            selection.extendTo(row);
        else if (modifiers & Qt.ControlModifier)
            selection.moveTo(row);
        else
            selection.select(row);
        showCurrent();
    }
    function press(row: int, modifiers: int) {
        forceActiveFocus(Qt.MouseFocusReason);
        if (modifiers & Qt.ShiftModifier)
            selection.extendTo(row);
        else if (modifiers & Qt.ControlModifier)
            selection.toggle(row);
        else
            selection.select(row);
    }
    function requestMenu() {
        const row = itemAtIndex(selection.currentRow);
        if (row)
            menuRequested(48, row.y - contentY + 48);
    }

    objectName: "messageView"
    model: screen.list
    reuseItems: true
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: false
    highlightFollowsCurrentItem: false
    currentIndex: -1
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: "邮件"
    T.ScrollBar.vertical: AppScrollBar {
        id: scrollBar
    }

    Keys.onPressed: event => {
        const page = Math.max(1, Math.floor(height / Theme.rowFull) - 1);
        const current = selection.currentRow;
        event.accepted = true;
        if (event.key === Qt.Key_Up)
            go(current - 1, event.modifiers);
        else if (event.key === Qt.Key_Down)
            go(current + 1, event.modifiers);
        else if (event.key === Qt.Key_PageUp)
            go(current - page, event.modifiers);
        else if (event.key === Qt.Key_PageDown)
            go(current + page, event.modifiers);
        else if (event.key === Qt.Key_Home)
            go(0, event.modifiers);
        else if (event.key === Qt.Key_End)
            go(count - 1, event.modifiers);
        else if (event.key === Qt.Key_Space && event.modifiers & Qt.ControlModifier)
            selection.toggle(current);
        else if (event.key === Qt.Key_Space)
            pageRequested(!(event.modifiers & Qt.ShiftModifier));
        else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            opened();
        else if (event.key === Qt.Key_Menu)
            requestMenu();
        else if (event.matches(StandardKey.SelectAll))
            selection.selectAll();
        else if (event.matches(StandardKey.Copy))
            screen.copySelection();
        else
            event.accepted = false;
    }

    delegate: MessageRow {
        id: row
        width: ListView.view.width
        current: view.selection.currentRow === index
        listFocused: view.focused
        onPressed: (modifiers, button) => {
            // A menu is for all that is selected when it opens on one of them.
            if (button !== Qt.RightButton || !selected)
                view.press(index, modifiers);
        }
        onDoubleClicked: view.opened()
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
