// A part of the window that Tab enters and leaves as a whole, coming back to the item that had the focus
// there last; arrows move inside of it. Every head, pane and bar of a screen is one. Main thread.
#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace corvane {

class FocusGroup : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    // Which arrows move: Left and Right, Up and Down.
    Q_PROPERTY(bool horizontal MEMBER horizontal_ NOTIFY arrowsChanged)
    Q_PROPERTY(bool vertical MEMBER vertical_ NOTIFY arrowsChanged)

  public:
    explicit FocusGroup(QQuickItem* parent = nullptr);

    // The innermost group around an item; null for none.
    static FocusGroup* around(QQuickItem* item);

    // What gets the focus when the group is entered and `first` would be the first to take it.
    [[nodiscard]] QQuickItem* entrance(QQuickItem* first) const;

  Q_SIGNALS:
    void arrowsChanged();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    bool step(bool forward);

    bool horizontal_ = true;
    bool vertical_ = true;
};

} // namespace corvane
