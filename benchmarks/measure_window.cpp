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

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTimer>

#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"
#include "timed_window.h"

namespace {

using namespace corvane;
using bench::Clock;
using bench::TimedApplication;
using bench::WholeWindow;

constexpr std::chrono::seconds runTime(20);

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
    bench::waitForFirstFrame(whole.shown());
    CorvaneViewModel& model = whole.model();
    whole.window().startUp();
    whole.waitFor([] { return true; });
    const std::string start = application.takeSummary();

    application.step("refresh", [&] { whole.window().refreshAllMailData(); });
    whole.waitFor([&] { return !model.mail().scanFlow.state().isScanning(); });
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
        whole.window().archive()->place()->quickDestinations()->chooseFolder(
            QUrl::fromLocalFile(QString::fromStdString(archive)));
    });
    whole.waitFor([] { return true; });
    application.step("sheet", [&] { whole.window().home()->runOrganizePrimaryAction(); });
    whole.waitFor([] { return true; });
    const std::string sheet = application.takeSummary();

    application.step("run", [&] { whole.window().archive()->start(); });
    QTimer::singleShot(runTime, whole.window().archive(), &ArchiveScreen::cancelRun);
    whole.waitFor([&] { return !model.archiving().archiveRun.isArchiving(); });
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
    const auto printFirstFrame = [entry](QQuickWindow& window) {
        bench::waitForFirstFrame(window);
        fmt::print("{:.6f}\n", std::chrono::duration<double>(Clock::now() - entry).count());
    };
    if (mode == QLatin1String("empty")) {
        QQmlApplicationEngine engine;
        engine.loadData("import QtQuick; Window { width: 1240; height: 840; Text { text: \"邮件\" } }");
        printFirstFrame(*qobject_cast<QQuickWindow*>(engine.rootObjects().first()));
        return 0;
    }
    useWindowFonts();
    const Appearance appearance(Appearance::Scheme::light);
    if (mode == QLatin1String("steps") && arguments.size() == 4) {
        fmt::print("{{{}}}\n", steps(application, home, arguments[3].toStdString()));
        return 0;
    }
    if (mode == QLatin1String("start") && arguments.size() == 3) {
        WholeWindow whole(home);
        printFirstFrame(whole.shown());
        return 0;
    }
    fmt::print(stderr, "measure_window steps HOME ARCHIVE | start HOME | empty\n");
    return 2;
}
