// Base of every list whose rows can be selected: what arrows, pages and ends make of the selection with Shift (the range
// from the anchor) and with the command key (another current row, without selecting it), and the same for presses.
import QtQuick
import QtQuick.Window
import QtQuick.Templates as T
import Corvane

ListView {
    id: list

    required property ListSelection selection
    // Of which a page is counted.
    property int rowHeight: Theme.rowDense
    // The row that the keyboard is at, also before one was chosen.
    readonly property int keyRow: selection.currentRow >= 0 ? selection.currentRow : count > 0 ? 0 : -1
    readonly property bool focused: activeFocus && Window.active
    readonly property bool dragged: dragging || scrollBar.pressed

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
    // Whether the key was one that moves or toggles.
    function handleKey(key: int, modifiers: int): bool {
        const page = Math.max(1, Math.floor(height / rowHeight) - 1);
        const current = keyRow;
        if (key === Qt.Key_Up)
            go(current - 1, modifiers);
        else if (key === Qt.Key_Down)
            go(current + 1, modifiers);
        else if (key === Qt.Key_PageUp)
            go(current - page, modifiers);
        else if (key === Qt.Key_PageDown)
            go(current + page, modifiers);
        else if (key === Qt.Key_Home)
            go(0, modifiers);
        else if (key === Qt.Key_End)
            go(count - 1, modifiers);
        else if (key === Qt.Key_Space && modifiers & Qt.ControlModifier)
            selection.toggle(current);
        else
            return false;
        return true;
    }

    clip: true
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: false
    highlightFollowsCurrentItem: false
    currentIndex: -1
    activeFocusOnTab: true
    T.ScrollBar.vertical: AppScrollBar {
        id: scrollBar
    }
}
