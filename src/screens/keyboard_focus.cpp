#include "screens/keyboard_focus.h"

#include <QEvent>
#include <QGuiApplication>
#include <QQuickWindow>

namespace corvane {

namespace {

bool holds(const QQuickItem* group, const QQuickItem* item) {
    for (; item != nullptr; item = item->parentItem())
        if (item == group) return true;
    return false;
}

// The outermost focus scope around `item` that doesn't hold `other`: the group that was entered.
QQuickItem* enteredScope(QQuickItem* item, const QQuickItem* other) {
    QQuickItem* scope = nullptr;
    for (QQuickItem* parent = item->parentItem(); parent != nullptr && !holds(parent, other);
         parent = parent->parentItem()) {
        if (parent->isFocusScope()) scope = parent;
    }
    return scope;
}

// What the scope would focus, through the scopes inside of it.
QQuickItem* rememberedItem(QQuickItem* scope) {
    QQuickItem* item = scope;
    while (item != nullptr && item->isFocusScope() && item->scopedFocusItem() != nullptr)
        item = item->scopedFocusItem();
    return item;
}

bool canTakeFocus(const QQuickItem* item) {
    return item != nullptr && item->isVisible() && item->isEnabled() && item->activeFocusOnTab();
}

} // namespace

KeyboardFocus::KeyboardFocus(QObject* parent)
  : QObject(parent) {
    qGuiApp->installEventFilter(this);
}

void KeyboardFocus::leave(QQuickItem* group, bool forward) {
    QQuickItem* start = group->window() != nullptr ? group->window()->activeFocusItem() : nullptr;
    if (start == nullptr || !holds(group, start)) start = group;
    QQuickItem* item = start;
    do {
        item = item->nextItemInFocusChain(forward);
    } while (item != nullptr && item != start && holds(group, item));
    if (item == nullptr || holds(group, item)) return;
    if (QQuickItem* scope = enteredScope(item, group)) {
        QQuickItem* remembered = rememberedItem(scope);
        if (canTakeFocus(remembered)) item = remembered;
    }
    item->forceActiveFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

bool KeyboardFocus::step(QQuickItem* group, bool forward) {
    QQuickItem* start = group->window() != nullptr ? group->window()->activeFocusItem() : nullptr;
    if (start == nullptr || !holds(group, start)) return false;
    QQuickItem* item = start->nextItemInFocusChain(forward);
    if (item == nullptr || item == start || !holds(group, item)) return false;
    item->forceActiveFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

bool KeyboardFocus::eventFilter(QObject* watched, QEvent* event) {
    const bool key = event->type() == QEvent::KeyPress;
    if ((key || event->type() == QEvent::MouseButtonPress) && key != inUse_) {
        inUse_ = key;
        Q_EMIT inUseChanged();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace corvane
