// Where the window stands: as the user left it, moved onto a screen that is there. Main thread.
#pragma once

#include <optional>

#include <QObject>
#include <QRect>
#include <QWindow>

#include "platform/settings_store.h"

namespace corvane {

// A frame that fits the usable area stays exactly as it is; any other is made as small as that area and moved
// into it.
QRect clampedFrame(const QRect& frame, const QRect& usable);

class WindowFrame : public QObject {
    Q_OBJECT

  public:
    // Both must outlive it. Places the window, which shouldn't be visible yet, and keeps it on its screen
    // from then on.
    WindowFrame(QWindow& window, platform::SettingsStore& settings, QObject* parent = nullptr);

    // Stores where the window stands now.
    void remember();

  private:
    void restore();
    void clamp();

    QWindow& window_;
    platform::SettingsStore& settings_;
};

} // namespace corvane
