// A menu of AppMenuRow. Opened by a key it begins at its first row, as there is no pointer to say which. It gives the
// keyboard back to what had it.
import QtQuick
import QtQuick.Window
import QtQuick.Templates as T
import Corvane

T.Menu {
    id: menu

    property Item returnTo: null

    onAboutToShow: {
        returnTo = parent.Window.activeFocusItem;
        OpenSheets.behindMenu = returnTo;
    }
    onOpened: if (KeyboardFocus.inUse && currentIndex < 0) currentIndex = firstEnabled()
    onClosed: {
        if (returnTo)
            returnTo.forceActiveFocus(KeyboardFocus.inUse ? Qt.TabFocusReason : Qt.OtherFocusReason);
        returnTo = null;
        OpenSheets.behindMenu = null;
    }

    implicitWidth: Math.max(160, rows.widestRow)
    implicitHeight: rows.contentHeight + topPadding + bottomPadding
    verticalPadding: Theme.half
    margins: Theme.space
    delegate: AppMenuRow {}

    contentItem: ListView {
        id: rows
        // The widest row; a ListView knows only its own width.
        readonly property real widestRow: {
            let widest = 0;
            for (let i = 0; i < menu.count; ++i)
                widest = Math.max(widest, menu.itemAt(i)?.implicitWidth ?? 0);
            return widest;
        }
        implicitHeight: contentHeight
        model: menu.contentModel
        interactive: contentHeight > height
        currentIndex: menu.currentIndex
    }
    background: Rectangle {
        color: Theme.sheet
        border.color: Theme.lineStrong
        radius: Theme.radiusSmall
    }

    function firstEnabled(): int {
        for (let i = 0; i < count; ++i) {
            if (itemAt(i).enabled && itemAt(i).activeFocusOnTab)
                return i;
        }
        return -1;
    }
}
