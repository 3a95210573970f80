// The one tooltip of the window, for whatever the pointer rests on. A popup of its own for each part would make rows
// that have several of them several times as dear.
pragma Singleton

import QtQuick

QtObject {
    id: registry

    // What it explains; null while nothing is explained, also where that has been destroyed.
    property Item holder: null
    // An AppToolTip, made from its file: what a singleton names it loads, and that one needs the other singletons.
    property var tip: null

    onHolderChanged: if (!holder && tip) tip.shown = false

    // An empty text ends the explanation of this item, and no other's.
    function explain(item: Item, text: string) {
        if (text.length === 0) {
            if (holder === item)
                holder = null;
            return;
        }
        if (!tip)
            tip = Qt.createComponent(Qt.resolvedUrl("AppToolTip.qml")).createObject(registry);
        if (holder !== item)
            tip.shown = false;
        tip.parent = item;
        tip.text = text;
        holder = item;
        tip.shown = true;
    }
}
