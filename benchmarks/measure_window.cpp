// Steps of the main thread while the whole window works, painted in software without a screen: every event
// that the loop delivers, with all that it causes, timed on its own. Prints one JSON object.
//
//   measure_window steps HOME ARCHIVE
//       a first scan of HOME, typing in the mail list, ticks, a run into ARCHIVE
//   measure_window start HOME
//       seconds from the entry to the first painted frame over HOME's caches
//   measure_window empty
//       the same of a window with one word in it
//
// The steps are milliseconds of the thread's processor, so that the work of other threads on the same cores
// doesn't count as a stall; beside them stands the longest by the clock.
#include <chrono>
#include <functional>
#include <utility>

#include <QEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QThread>
#include <QTimer>

#include "main_thread_times.h"
#include "model/corvane_view_model.h"
#include "platform/platform.h"
#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"
#include "screens/shell/window_model.h"

namespace {

using namespace corvane;
using Clock = std::chrono::steady_clock;

constexpr double stallMilliseconds = 16;
constexpr std::chrono::seconds runTime(20);

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

void waitForFirstFrame(QQuickWindow& window) {
    QEventLoop loop;
    QObject::connect(&window, &QQuickWindow::frameSwapped, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    window.show();
    loop.exec();
}

std::string typed(TimedApplication& application, WholeWindow& whole) {
    MailListScreen& mails = *whole.window().mails();
    for (const char* query :
         {"会", "会议", "会议纪", "会议纪要", "会议", "", "r", "re", "report", "无此邮件", ""}) {
        bool arrived = false;
        const auto listed =
            QObject::connect(mails.list(), &MessageListModel::changed, [&] { arrived = true; });
        application.step("query", [&] {
            mails.filters()->setQuery(QString::fromUtf8(query));
            mails.filters()->applyQuery();
        });
        whole.waitFor([&] { return arrived; });
        QObject::disconnect(listed);
    }
    return application.takeSummary();
}

std::string steps(TimedApplication& application, const std::string& home, const std::string& archive) {
    WholeWindow whole(home);
    waitForFirstFrame(whole.shown());
    CorvaneViewModel& model = whole.model();
    whole.window().startUp();
    whole.waitFor([] { return true; });
    const std::string start = application.takeSummary();

    application.step("refresh", [&] { whole.window().refreshAllMailData(); });
    whole.waitFor([&] { return !model.scanFlow().state().isScanning(); });
    const std::string scan = application.takeSummary();

    const auto show = [&](const char* place) {
        application.step("place", [&] { whole.show(place); });
        whole.waitFor([] { return true; });
    };
    show("mails");
    const std::string firstList = application.takeSummary();
    const std::string typing = typed(application, whole);

    show("home");
    application.step("tick all", [&] { whole.window().home()->tree()->tickAll(); });
    whole.waitFor([] { return true; });
    const std::string ticking = application.takeSummary();

    application.step("destination", [&] {
        whole.window().archive()->quickDestinations()->chooseFolder(
            QUrl::fromLocalFile(QString::fromStdString(archive)));
    });
    whole.waitFor([] { return true; });
    application.step("sheet", [&] { whole.window().home()->runOrganizePrimaryAction(); });
    whole.waitFor([] { return true; });
    const std::string sheet = application.takeSummary();

    application.step("run", [&] { whole.window().archive()->start(); });
    QTimer::singleShot(runTime, whole.window().archive(), &ArchiveScreen::cancelRun);
    whole.waitFor([&] { return !model.archiveRun().isArchiving(); });
    const std::string run = application.takeSummary();
    return fmt::format(
        R"("start": {}, "scan": {}, "firstList": {}, "typing": {}, "ticking": {}, "sheet": {}, "run": {})",
        start, scan, firstList, typing, ticking, sheet, run);
}

} // namespace

int main(int argc, char** argv) {
    const Clock::time_point entry = Clock::now();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    TimedApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString mode = arguments.value(1);
    const std::string home = arguments.value(2).toStdString();
    if (mode == QLatin1String("empty")) {
        QQmlApplicationEngine engine;
        engine.loadData("import QtQuick; Window { width: 1240; height: 840; Text { text: \"邮件\" } }");
        waitForFirstFrame(*qobject_cast<QQuickWindow*>(engine.rootObjects().first()));
    } else {
        useWindowFonts();
    }
    const Appearance appearance(Appearance::Scheme::light);
    if (mode == QLatin1String("steps") && arguments.size() == 4) {
        fmt::print("{{{}}}\n", steps(application, home, arguments[3].toStdString()));
        return 0;
    }
    if (mode == QLatin1String("start") && arguments.size() == 3) {
        WholeWindow whole(home);
        waitForFirstFrame(whole.shown());
    } else if (mode != QLatin1String("empty")) {
        fmt::print(stderr, "measure_window steps HOME ARCHIVE | start HOME | empty\n");
        return 2;
    }
    fmt::print("{:.6f}\n", std::chrono::duration<double>(Clock::now() - entry).count());
    return 0;
}
