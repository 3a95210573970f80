// How the keyboard moves through the window: Tab from group to group, arrows inside one. And whether the
// keyboard is what the user works with, which decides where a focus ring is shown. Main thread.
#pragma once

#include <QObject>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace corvane {

class KeyboardFocus : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    // The last press was on a key, not on a pointer's button.
    Q_PROPERTY(bool inUse READ inUse NOTIFY inUseChanged)

  public:
    explicit KeyboardFocus(QObject* parent = nullptr);

    [[nodiscard]] bool inUse() const { return inUse_; }

    // From the focused item of `group` to the nearest group after (or before) it, onto the item that had the
    // focus there last. Stays when there is nowhere else to go.
    Q_INVOKABLE void leave(QQuickItem* group, bool forward);

    // To the next (or the previous) item that takes the focus inside of `group`; stays at its ends. Returns
    // whether it moved.
    Q_INVOKABLE bool step(QQuickItem* group, bool forward);

    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    void inUseChanged();

  private:
    bool inUse_ = false;
};

} // namespace corvane
