// A column that scrolls, by itself to whatever in it has the keyboard.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import QtQuick.Window
import Corvane

Flickable {
    id: flick

    property int margin: 24
    property int marginRight: margin
    // Below the last item.
    property int gap: 20
    default property alias items: column.data
    readonly property real lowest: Math.max(0, contentHeight - height)
    readonly property Item holder: Window.activeFocusItem

    function moveTo(position: real) {
        contentY = Math.max(0, Math.min(lowest, position));
    }
    // Whether the key was one that scrolls.
    function scrollBy(key: int): bool {
        const page = height - Theme.controlHeight;
        const steps = new Map([[Qt.Key_Up, -Theme.rowDense], [Qt.Key_Down, Theme.rowDense],
            [Qt.Key_PageUp, -page], [Qt.Key_PageDown, page], [Qt.Key_Home, -contentHeight],
            [Qt.Key_End, contentHeight]]);
        if (!steps.has(key))
            return false;
        moveTo(contentY + steps.get(key));
        return true;
    }
    // Scrolls as little as shows the item; without effect for one that isn't in the body.
    function show(item: Item) {
        let at = item;
        while (at && at !== column)
            at = at.parent;
        if (!at)
            return;
        const top = item.mapToItem(column, 0, 0).y;
        moveTo(Math.min(top - Theme.space, Math.max(contentY, top + item.height + Theme.space - height)));
    }

    onHolderChanged: show(holder)
    implicitHeight: column.implicitHeight + gap
    contentHeight: implicitHeight
    clip: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    T.ScrollBar.vertical: AppScrollBar {}

    ColumnLayout {
        id: column
        x: flick.margin
        width: flick.width - x - flick.marginRight
        spacing: 0
    }
}
