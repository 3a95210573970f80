#include "screens/controls/focus/focus_group.h"

#include <QKeyEvent>
#include <QQuickWindow>

namespace corvane {

FocusGroup::FocusGroup(QQuickItem* parent)
  : QQuickItem(parent) {
    setFlag(ItemIsFocusScope);
}

FocusGroup* FocusGroup::around(QQuickItem* item) {
    for (; item != nullptr; item = item->parentItem())
        if (auto* group = qobject_cast<FocusGroup*>(item)) return group;
    return nullptr;
}

QQuickItem* FocusGroup::entrance(QQuickItem* first) const {
    QQuickItem* remembered = scopedFocusItem();
    while (remembered != nullptr && remembered->isFocusScope() && remembered->scopedFocusItem() != nullptr)
        remembered = remembered->scopedFocusItem();
    const bool canTakeFocus = remembered != nullptr && remembered->isVisible() && remembered->isEnabled() &&
                              remembered->activeFocusOnTab();
    return canTakeFocus ? remembered : first;
}

void FocusGroup::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    const bool forward = (horizontal_ && key == Qt::Key_Right) || (vertical_ && key == Qt::Key_Down);
    const bool back = (horizontal_ && key == Qt::Key_Left) || (vertical_ && key == Qt::Key_Up);
    event->setAccepted((forward || back) && event->modifiers().testFlags(Qt::NoModifier) && step(forward));
}

// Stays at the ends of the group.
bool FocusGroup::step(bool forward) {
    QQuickItem* start = window() != nullptr ? window()->activeFocusItem() : nullptr;
    if (start == nullptr) return false;
    QQuickItem* item = start->nextItemInFocusChain(forward);
    if (item == nullptr || !isAncestorOf(item)) return false;
    // Around the end the chain may come back to the group's other end.
    QList<QQuickItem*> order;
    for (QQuickItem* next = this->nextItemInFocusChain(true); next != nullptr && isAncestorOf(next);
         next = next->nextItemInFocusChain(true)) {
        if (order.contains(next)) break;
        order.append(next);
    }
    if (forward ? order.indexOf(item) < order.indexOf(start) : order.indexOf(item) > order.indexOf(start))
        return false;
    item->forceActiveFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

} // namespace corvane
