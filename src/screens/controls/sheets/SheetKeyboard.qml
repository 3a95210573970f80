// Gives the keyboard to a sheet: to its primary button where that can be pressed, and after another sheet was shown to
// where it was left.
import QtQuick
import QtQuick.Window
import Corvane

QtObject {
    id: keyboard

    // Of type Sheet, which needs this one to be made.
    required property var sheet
    readonly property int focusReason: KeyboardFocus.inUse ? Qt.TabFocusReason : Qt.OtherFocusReason
    // What the sheet gave the keyboard to.
    property Item begunAt: null

    function sheetOf(item: Item): var {
        for (let at = item; at; at = at.parent) {
            if (at.sheetAround)
                return at.sheetAround;
        }
        return null;
    }

    // At once, and again when the sheet stands, as its primary button may have had to wait. Who has gone on by then
    // stays where they are: a Space meant for another control must not press the primary one.
    function enter(): void {
        const holder = sheet.parent.Window.activeFocusItem;
        if (!sheet.visible || sheet.waits || (begunAt && holder !== begunAt && sheetOf(holder) === sheet))
            return;
        if (begunAt && sheetOf(holder) !== sheet) {
            KeyboardFocus.enter(sheet.contentItem);
            return;
        }
        const first = sheet.holdsKeyboard ? sheet.contentItem : sheet.primary && sheet.primary.enabled ? sheet.primary
            : KeyboardFocus.inUse && holder === sheet.contentItem ? sheet.contentItem.nextItemInFocusChain(true)
            : null;
        if (first)
            first.forceActiveFocus(focusReason);
        begunAt = sheet.parent.Window.activeFocusItem;
    }
}
