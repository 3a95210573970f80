// The rows of the mail list: what keys and the pointer make of them, and the place that is kept when the list
// changes.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

SelectableList {
    id: view

    required property MailListScreen screen

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
    // Rows that have gone leave the place to the next one that is still there; another list begins at its top.
    function restorePlace() {
        forceLayout();
        for (let row = anchorRow; row >= 0 && row < anchorRow + 50; ++row) {
            const next = screen.list.rowAfterChange(row);
            if (next < 0)
                continue;
            contentY = originY + next * Theme.rowFull + (row === anchorRow ? anchorOffset : 0);
            returnToBounds();
            return;
        }
        positionViewAtBeginning();
    }
    // Rows in view show how their messages begin.
    function lookAtRows() {
        const first = visible ? firstRow() : -1;
        if (first >= 0)
            screen.rowPreviews.look(first, first + Math.ceil(height / Theme.rowFull));
    }
    function requestMenu() {
        showCurrent();
        const row = itemAtIndex(selection.currentRow);
        if (row)
            menuRequested(48, row.y - contentY + 48);
    }

    objectName: "messageView"
    model: screen.list
    selection: screen.selection
    rowHeight: Theme.rowFull
    reuseItems: true
    onContentYChanged: lookAtRows()
    onHeightChanged: lookAtRows()
    onVisibleChanged: lookAtRows()
    Component.onCompleted: lookAtRows()
    Accessible.role: Accessible.List
    Accessible.name: "邮件"

    Keys.onPressed: event => {
        event.accepted = true;
        if (handleKey(event.key, event.modifiers))
            return;
        if (event.key === Qt.Key_Space)
            pageRequested(!(event.modifiers & Qt.ShiftModifier));
        else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            opened();
        else if (event.key === Qt.Key_Menu || (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier))
            requestMenu();
        else if (event.matches(StandardKey.SelectAll))
            selection.selectAll();
        else if (event.matches(StandardKey.Copy))
            screen.actions.copySelection();
        else
            event.accepted = false;
    }

    delegate: MessageRow {
        id: row
        width: ListView.view.width
        // Rows outlive the screen by a moment when the window goes.
        current: view.selection !== null && view.selection.currentRow === index
        listFocused: view.focused
        query: view.screen?.list?.query ?? ""
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
            view.lookAtRows();
        }
    }
    Connections {
        target: view.screen
        function onListRearranged() {
            view.showCurrent();
        }
        function onListReordered() {
            view.positionViewAtBeginning();
        }
    }
}
