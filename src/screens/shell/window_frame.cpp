#include "screens/shell/window_frame.h"

#include <algorithm>
#include <array>
#include <string>

#include <QGuiApplication>
#include <QScreen>

namespace corvane {

namespace {

constexpr const char* frameKey = "corvaneWindowFrame";

QString textOf(const QRect& frame, bool maximized) {
    return QStringLiteral("%1 %2 %3 %4%5")
        .arg(frame.x())
        .arg(frame.y())
        .arg(frame.width())
        .arg(frame.height())
        .arg(maximized ? QStringLiteral(" maximized") : QString());
}

struct StoredFrame {
    QRect frame;
    bool maximized = false;
};

std::optional<StoredFrame> storedFrame(const std::string& text) {
    const QStringList parts = QString::fromStdString(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (parts.size() < 4) return std::nullopt;
    std::array<int, 4> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        bool isNumber = false;
        numbers[i] = parts[static_cast<qsizetype>(i)].toInt(&isNumber);
        if (!isNumber) return std::nullopt;
    }
    const QRect frame(numbers[0], numbers[1], numbers[2], numbers[3]);
    if (!frame.isValid()) return std::nullopt;
    return StoredFrame{frame, parts.size() > 4 && parts[4] == QLatin1String("maximized")};
}

} // namespace

QRect clampedFrame(const QRect& frame, const QRect& usable) {
    if (usable.isEmpty() || usable.contains(frame)) return frame;
    const QSize size = frame.size().boundedTo(usable.size());
    const int x = std::clamp(frame.x(), usable.left(), usable.left() + usable.width() - size.width());
    const int y = std::clamp(frame.y(), usable.top(), usable.top() + usable.height() - size.height());
    return {QPoint(x, y), size};
}

WindowFrame::WindowFrame(QWindow& window, platform::SettingsStore& settings, QObject* parent)
  : QObject(parent)
  , window_(window)
  , settings_(settings) {
    restore();
    const auto watch = [this](QScreen* screen) {
        connect(screen, &QScreen::availableGeometryChanged, this, &WindowFrame::clamp);
    };
    for (QScreen* screen : QGuiApplication::screens()) watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
    // Queued: the window has been moved to another screen by then.
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &WindowFrame::clamp, Qt::QueuedConnection);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) clamp();
    });
}

void WindowFrame::remember() {
    const bool maximized = window_.windowStates().testFlag(Qt::WindowMaximized);
    const std::optional<StoredFrame> before = storedFrame(settings_.text(frameKey).value_or(""));
    // The frame to come back to when the window is made smaller again.
    const QRect frame = maximized && before ? before->frame : window_.geometry();
    settings_.setText(frameKey, textOf(frame, maximized).toStdString());
}

void WindowFrame::restore() {
    const std::optional<StoredFrame> stored = storedFrame(settings_.text(frameKey).value_or(""));
    if (stored) window_.setGeometry(stored->frame);
    const QScreen* screen = stored ? QGuiApplication::screenAt(stored->frame.center()) : nullptr;
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) return;
    const QRect usable = screen->availableGeometry();
    // A screen that is smaller than the window may be still shows all of it.
    window_.setMinimumSize(window_.minimumSize().boundedTo(usable.size()));
    if (!stored) {
        QRect frame(QPoint(), window_.size());
        frame.moveCenter(usable.center());
        window_.setGeometry(frame);
    }
    window_.setGeometry(clampedFrame(window_.geometry(), usable));
    if (stored && stored->maximized) window_.setWindowStates(Qt::WindowMaximized);
}

void WindowFrame::clamp() {
    const QScreen* screen = window_.screen() != nullptr ? window_.screen() : QGuiApplication::primaryScreen();
    const Qt::WindowStates filling = Qt::WindowMaximized | Qt::WindowFullScreen | Qt::WindowMinimized;
    if (screen == nullptr || !window_.isVisible() || (window_.windowStates() & filling)) return;
    const QRect frame = window_.frameGeometry();
    const QRect wanted = clampedFrame(frame, screen->availableGeometry());
    if (wanted == frame) return;
    window_.resize(wanted.size() - (frame.size() - window_.size()));
    window_.setFramePosition(wanted.topLeft());
}

} // namespace corvane
