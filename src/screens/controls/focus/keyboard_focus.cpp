#include "screens/controls/focus/keyboard_focus.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickWindow>

#include "screens/controls/focus/focus_group.h"

namespace corvane {

namespace {

// The first item that takes the focus outside of the group of the focused one. Where there is none outside,
// or neither of both is in a group, Qt's own order holds: false.
bool moveBetweenGroups(const QQuickWindow& window, bool forward) {
    QQuickItem* start = window.activeFocusItem();
    if (start == nullptr) return false;
    const FocusGroup* group = FocusGroup::around(start);
    QQuickItem* item = start->nextItemInFocusChain(forward);
    while (group != nullptr && item != nullptr && item != start && group->isAncestorOf(item))
        item = item->nextItemInFocusChain(forward);
    if (item == nullptr || item == start) return false;
    const FocusGroup* entered = FocusGroup::around(item);
    if (entered == nullptr && group == nullptr) return false;
    if (entered != nullptr && entered != group) item = entered->entrance(item);
    item->forceActiveFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

constexpr qint64 pointerRest = 250; // milliseconds

} // namespace

KeyboardFocus::KeyboardFocus(QObject* parent)
  : QObject(parent) {
    qGuiApp->installEventFilter(this);
}

bool KeyboardFocus::isHeldIn(QQuickItem* item) {
    const QQuickWindow* window = item != nullptr ? item->window() : nullptr;
    const QQuickItem* holder = window != nullptr ? window->activeFocusItem() : nullptr;
    return holder != nullptr && holder->isVisible() && holder->activeFocusOnTab();
}

void KeyboardFocus::enter(QQuickItem* scope) const {
    if (scope == nullptr || scope->window() == nullptr) return;
    const Qt::FocusReason reason = inUse_ ? Qt::TabFocusReason : Qt::OtherFocusReason;
    scope->forceActiveFocus(reason);
    QQuickItem* holder =
        isHeldIn(scope) ? scope->window()->activeFocusItem() : scope->nextItemInFocusChain(true);
    // A part that has nothing yet keeps it for what is to come, and gives it to nobody else.
    if (holder == nullptr || !scope->isAncestorOf(holder)) return;
    // The reason, which decides about the ring, is only taken with the focus.
    holder->setFocus(false, reason);
    holder->forceActiveFocus(reason);
}

void KeyboardFocus::awaitFreshKey() {
    awaitedSince_.start();
    ignoresHeldKey_ = true;
}

bool KeyboardFocus::awaitsFreshKey() const {
    return awaitedSince_.isValid() && awaitedSince_.elapsed() < freshKeyPause_;
}

bool KeyboardFocus::holdsBack(const QKeyEvent& press) {
    const int key = press.key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Space) return false;
    if (awaitsFreshKey() || (press.isAutoRepeat() && ignoresHeldKey_)) return true;
    ignoresHeldKey_ = false;
    return false;
}

// A filter, because an item that takes part in Qt's own order handles Tab before any item around it hears of
// it.
bool KeyboardFocus::eventFilter(QObject* watched, QEvent* event) {
    const bool isKey = event->type() == QEvent::KeyPress;
    if (event->type() == QEvent::MouseMove && watched->isWindowType()) restartPointerRest();
    if (!isKey && event->type() != QEvent::MouseButtonPress) return false;
    setInUse(isKey);
    pointerMove_.invalidate();
    if (watched->isWindowType()) Q_EMIT pressed();
    if (!isKey) return false;
    const auto* window = qobject_cast<QQuickWindow*>(watched);
    const auto* press = static_cast<QKeyEvent*>(event);
    if (window != nullptr && holdsBack(*press)) return true;
    if (window == nullptr || press->modifiers().testFlag(Qt::ControlModifier)) return false;
    if (press->key() == Qt::Key_Tab) return moveBetweenGroups(*window, true);
    if (press->key() == Qt::Key_Backtab) return moveBetweenGroups(*window, false);
    return false;
}

bool KeyboardFocus::pointerMovedLately() const {
    return pointerMove_.isValid() && pointerMove_.elapsed() < pointerRest;
}

void KeyboardFocus::restartPointerRest() {
    const bool rested = !pointerMovedLately();
    pointerMove_.start();
    if (rested) Q_EMIT pointerMoved();
}

void KeyboardFocus::setInUse(bool inUse) {
    if (inUse == inUse_) return;
    inUse_ = inUse;
    Q_EMIT inUseChanged();
}

} // namespace corvane
