// The keyboard over the whole program: whether it is what the user works with, which decides where a focus
// ring is shown, and Tab, which goes from group to group (see focus_group.h). Main thread.
#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

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

    // Something in the window of `item` has the keyboard that can be seen and that Tab comes to.
    Q_INVOKABLE [[nodiscard]] static bool isHeldIn(QQuickItem* item);

    // The keyboard goes on where it was in this focus scope, or begins at its first part.
    Q_INVOKABLE void enter(QQuickItem* scope) const;

    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    void inUseChanged();

  private:
    void setInUse(bool inUse);

    bool inUse_ = false;
};

} // namespace corvane
