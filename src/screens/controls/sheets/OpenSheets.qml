// The sheets that are open over the window. At most one is shown: the last one, unless an earlier one is urgent. The
// others wait as they were left and come back in turn. The keyboard goes with the shown one, and in the end back to
// what had it before the first.
pragma Singleton

import QtQuick

QtObject {
    id: registry

    // In the order in which they came; of type Sheet.
    property var sheets: []
    readonly property var shown: sheets.find(sheet => sheet.urgent) ?? sheets[sheets.length - 1] ?? null
    property Item returnTo: null
    // What an open menu gives the keyboard back to: the sheet that one of its rows opens does the same.
    property Item behindMenu: null
    property int returnReason: Qt.OtherFocusReason
    // The button that the pointer pressed last. A press doesn't give it the keyboard, but what it opens comes back to it.
    property Item pressed: null
    property real pressedAt: 0

    function notePress(button: Item) {
        pressed = button;
        pressedAt = Date.now();
    }

    function enter(sheet: var, holder: Item) {
        // One that was destroyed while it was open has not left.
        const others = sheets.filter(other => other && other.visible && other !== sheet);
        if (others.length === 0)
            returnTo = behindMenu ?? (pressed && Date.now() - pressedAt < 1000 ? pressed : holder);
        sheets = others.concat([sheet]);
        Qt.callLater(passKeyboard);
    }
    function leave(sheet: var, reason: int) {
        returnReason = reason;
        sheets = sheets.filter(other => other && other !== sheet);
        passKeyboard();
    }
    function passKeyboard() {
        if (shown) {
            shown.keyboard.enter();
        } else if (returnTo) {
            // What opened the first may have gone by what was done in it.
            const holder = returnTo.visible && returnTo.enabled ? returnTo : returnTo.nextItemInFocusChain(true);
            holder.forceActiveFocus(returnReason);
            returnTo = null;
        }
    }
}
