// The keyboard over the whole program: whether it is what the user works with, which decides where a focus
// ring is shown, and Tab, which goes from group to group (see focus_group.h); and whether the pointer moves,
// which decides about tooltips. Main thread.
#pragma once

#include <QElapsedTimer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class QKeyEvent;

namespace corvane {

class KeyboardFocus : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    // The last press was on a key, not on a pointer's button.
    Q_PROPERTY(bool inUse READ inUse NOTIFY inUseChanged)
    // How long a part that has just appeared is left alone by `awaitFreshKey`, in milliseconds.
    Q_PROPERTY(int freshKeyPause MEMBER freshKeyPause_ NOTIFY freshKeyPauseChanged)

  public:
    explicit KeyboardFocus(QObject* parent = nullptr);

    [[nodiscard]] bool inUse() const { return inUse_; }

    // Something in the window of `item` has the keyboard that can be seen and that Tab comes to.
    Q_INVOKABLE [[nodiscard]] static bool isHeldIn(QQuickItem* item);

    // The keyboard goes on where it was in this focus scope, or begins at its first part.
    Q_INVOKABLE void enter(QQuickItem* scope) const;

    // Something has appeared that wasn't there when the last key was pressed: for a moment Return and Space
    // go nowhere, and one that is held down from before never arrives.
    Q_INVOKABLE void awaitFreshKey();

    // Return and Space are held back at this moment.
    [[nodiscard]] bool awaitsFreshKey() const;

    // The pointer was moved a moment ago, and nothing was pressed since: what it is over now it was led to.
    Q_INVOKABLE [[nodiscard]] bool pointerMovedLately() const;

    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    void inUseChanged();
    void freshKeyPauseChanged();
    // A key or a button of the pointer was pressed, whatever comes of it.
    void pressed();
    // After a rest; not for each step of a movement.
    void pointerMoved();

  private:
    void setInUse(bool inUse);
    void restartPointerRest();
    bool holdsBack(const QKeyEvent& press);

    bool inUse_ = false;
    int freshKeyPause_ = 500;
    bool ignoresHeldKey_ = false;
    QElapsedTimer awaitedSince_;
    QElapsedTimer pointerMove_; // since the last movement
};

} // namespace corvane
