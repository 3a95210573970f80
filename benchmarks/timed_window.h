// The whole window under a watch: every event that the loop delivers, with all that it causes, timed on its
// own, in milliseconds of the thread's processor and by the clock.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QThread>

#include "main_thread_times.h"
#include "model/corvane_view_model.h"
#include "platform/platform.h"
#include "screens/shell/window_model.h"

namespace corvane::bench {

using Clock = std::chrono::steady_clock;

inline constexpr double stallMilliseconds = 16;

// What was delivered from the event loop since the last look.
class TimedApplication : public QGuiApplication {
  public:
    using QGuiApplication::QGuiApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        // Events of other threads come by here as well.
        if (QThread::currentThread() != thread() || depth_ > 0)
            return QGuiApplication::notify(receiver, event);
        const std::string name =
            fmt::format("{} {}", receiver->metaObject()->className(), int(event->type()));
        const double processor = threadMilliseconds();
        const Clock::time_point start = Clock::now();
        ++depth_;
        const bool taken = QGuiApplication::notify(receiver, event);
        --depth_;
        note(name, threadMilliseconds() - processor,
             std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        return taken;
    }

    // A step that doesn't come from an event, such as what a click does.
    void step(const std::string& name, const std::function<void()>& work) {
        const double processor = threadMilliseconds();
        const Clock::time_point start = Clock::now();
        ++depth_;
        work();
        --depth_;
        note(name, threadMilliseconds() - processor,
             std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }

    std::string takeSummary() {
        std::string stalls;
        for (const std::string& stall : stalls_) stalls += (stalls.empty() ? "\"" : ", \"") + stall + '"';
        const std::string text =
            fmt::format(R"({{"processor": {}, "longestByClock": {:.1f}, "stalls": [{}]}})",
                        summaryOf(std::exchange(times_, {0})), std::exchange(longest_, 0), stalls);
        stalls_.clear();
        return text;
    }

  private:
    void note(const std::string& name, double processor, double clock) {
        times_.push_back(processor);
        longest_ = std::max(longest_, clock);
        if (processor > stallMilliseconds) stalls_.push_back(fmt::format("{} {:.1f}", name, processor));
    }

    int depth_ = 0;
    std::vector<double> times_{0};
    double longest_ = 0;
    std::vector<std::string> stalls_;
};

class WholeWindow {
  public:
    explicit WholeWindow(const std::string& home)
      : system_(platform::makePlatform(home))
      , context_(*system_)
      , model_(context_)
      , window_(model_) {
        engine_.addImportPath(QStringLiteral(":/qt/qml"));
        engine_.setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&window_)}});
        engine_.load(QUrl(QStringLiteral("qrc:/qt/qml/Corvane/shell/Main.qml")));
        if (engine_.rootObjects().isEmpty()) qFatal("no window");
        shown_ = qobject_cast<QQuickWindow*>(engine_.rootObjects().first());
    }

    QQuickWindow& shown() { return *shown_; }

    WindowModel& window() { return window_; }

    CorvaneViewModel& model() { return model_; }

    // Runs the event loop until `done` and nothing is at work.
    void waitFor(const std::function<bool()>& done) {
        while (!done() || !context_.tasks.isIdle())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        for (int pass = 0; pass < 20; ++pass) QCoreApplication::processEvents();
    }

    // As by a click in the sidebar.
    void show(const char* place) {
        for (QQuickItem* item : shown_->contentItem()->childItems())
            item->setProperty("place", QString::fromLatin1(place));
    }

  private:
    std::unique_ptr<platform::Platform> system_;
    ModelContext context_;
    CorvaneViewModel model_;
    WindowModel window_;
    QQmlApplicationEngine engine_;
    QQuickWindow* shown_ = nullptr;
};

inline void waitForFirstFrame(QQuickWindow& window) {
    QEventLoop loop;
    QObject::connect(&window, &QQuickWindow::frameSwapped, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    window.show();
    loop.exec();
}

} // namespace corvane::bench
