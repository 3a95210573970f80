// The one tooltip of the window, for whatever the pointer rests on. A popup of its own for each part would make rows
// that have several of them several times as dear.
pragma Singleton

import QtQuick

QtObject {
    id: registry

    // What it explains; null while nothing is explained, also where that has been destroyed.
    property Item holder: null
    // A part around the holder that has an explanation of its own, which comes back when the holder's ends.
    property Item outer: null
    property string outerText: ""
    // An AppToolTip, made from its file: what a singleton names it loads, and that one needs the other singletons.
    property var tip: null

    onHolderChanged: if (!holder && tip) tip.shown = false

    // An empty text ends the explanation of this item, and no other's.
    function explain(item: Item, text: string) {
        if (text.length === 0) {
            end(item);
        } else if (item !== holder && isAround(item, holder)) {
            outer = item;
            outerText = text;
        } else {
            if (item !== holder) {
                outerText = isAround(holder, item) ? tip.text : "";
                outer = outerText.length > 0 ? holder : null;
            }
            show(item, text);
        }
    }

    function end(item: Item) {
        if (item === outer) {
            outer = null;
        } else if (item === holder && outer) {
            const next = outer;
            outer = null;
            show(next, outerText);
        } else if (item === holder) {
            holder = null;
        }
    }

    function isAround(item: Item, inner: Item): bool {
        let each = inner;
        while (item && each && each !== item)
            each = each.parent;
        return item !== null && each === item;
    }

    function show(item: Item, text: string) {
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
