// Steps of the main thread while somebody goes through a large library, painted in software without a screen.
// Prints one JSON object: the longest steps of each thing that is done.
//   measure_library_window HOME COUNT      HOME is filled with ten archives of so many records in all,
//   without
//                                          files; with a COUNT of 0 it is taken as it is
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QKeyEvent>
#include <QQuickItem>
#include <sys/resource.h>

#include "library_samples.h"
#include "locations/known_locations.h"
#include "platform/files/writing/durable_file.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"
#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"
#include "timed_window.h"

namespace {

using namespace corvane;
using bench::TimedApplication;
using bench::WholeWindow;

constexpr std::size_t archiveCount = 10;

// A large thread beside the small ones: mail that answers the first one and nothing else.
constexpr std::size_t answersTheFirst = 100;

// The folders of the archives.
std::vector<std::string> makeArchives(const std::string& home, std::size_t count) {
    std::vector<EmailArchiveIndex> indexes(
        archiveCount, EmailArchiveIndex{Date(std::chrono::seconds(1)), Date(std::chrono::seconds(2)), {}});
    std::vector<ArchivedEntry> entries = bench::makeArchivedEntries(count);
    const SharedText first = *entries.front().record.messageIdentifier;
    for (std::size_t number = 0; number < count; ++number) {
        ArchivedEmailRecord& record = entries[number].record;
        if (number % answersTheFirst == 1)
            record.referencedMessageIdentifiers = {first};
        else
            record.referencedMessageIdentifiers
                .reset(); // with the subjects they would join all to one thread
        indexes[number * archiveCount / count].records.push_back(std::move(record));
    }
    std::vector<std::string> roots;
    for (std::size_t number = 0; number < archiveCount; ++number) {
        // Two archives of one time are taken for one that was copied.
        indexes[number].createdAt = Date(std::chrono::seconds(1 + number));
        roots.push_back(platform::joinPath(home, fmt::format("Documents/邮件归档 {}", number)));
        std::filesystem::create_directories(roots.back());
        platform::writeFileAtomically(platform::posixFileLayer(),
                                      platform::joinPath(roots.back(), archiveIndexFileName),
                                      encodeArchiveIndex(indexes[number]));
    }
    return roots;
}

// Of the process, in megabytes.
long peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// By its name, among all that is painted below an item; null without it.
QQuickItem* partOf(const QQuickItem& item, const QString& name) {
    for (QQuickItem* child : item.childItems()) {
        if (child->objectName() == name) return child;
        if (QQuickItem* part = partOf(*child, name)) return part;
    }
    return nullptr;
}

class LibraryWalk {
  public:
    LibraryWalk(TimedApplication& application, WholeWindow& whole)
      : application_(application)
      , whole_(whole) {}

    // Does it, waits until its effects are painted, and prints the longest steps of that.
    void measure(const char* name, const std::function<void()>& act) {
        application_.takeSummary();
        const auto start = bench::Clock::now();
        application_.step(name, act);
        settle();
        const double seconds = std::chrono::duration<double>(bench::Clock::now() - start).count();
        fmt::print("{}\"{}\": {{\"seconds\": {:.3f}, \"peak megabytes\": {}, \"steps\": {}}}",
                   isFirst_ ? "" : ",\n ", name, seconds, peakMemory(), application_.takeSummary());
        isFirst_ = false;
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, modifiers);
            QCoreApplication::sendEvent(&whole_.shown(), &event);
        }
    }

    LibraryScreen& screen() { return *whole_.window().library(); }

    void settle() {
        whole_.waitFor([&] { return !screen().search()->isBusy(); });
        const auto end = bench::Clock::now() + std::chrono::milliseconds(150);
        while (bench::Clock::now() < end) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    void walk();
    void remove();
    void scrollSlowly(QQuickItem& view);
    void openLargestThread();
    void type(const char* query);

  private:
    TimedApplication& application_;
    WholeWindow& whole_;
    bool isFirst_ = true;
};

// A turn of the wheel a frame.
void LibraryWalk::scrollSlowly(QQuickItem& view) {
    bool isPainted = false;
    const auto painted =
        QObject::connect(&whole_.shown(), &QQuickWindow::frameSwapped, [&] { isPainted = true; });
    application_.takeSummary();
    for (int frame = 1; frame <= 300; ++frame) {
        isPainted = false;
        application_.step("scroll", [&] { view.setProperty("contentY", 120 * frame); });
        while (!isPainted) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    QObject::disconnect(painted);
    fmt::print(",\n \"300 frames\": {}", application_.takeSummary());
}

void LibraryWalk::openLargestThread() {
    int largest = 0;
    int most = 0;
    for (int row = 0; row < screen().list()->rowCount(); ++row) {
        const int count =
            screen().list()->data(screen().list()->index(row), LibraryRowModel::MemberCountRole).toInt();
        if (count > most) largest = row;
        most = std::max(most, count);
    }
    screen().selection()->select(largest);
    settle();
    measure(fmt::format("open a thread of {}", most).c_str(), [&] { key(Qt::Key_Right); });
    measure("close it", [&] { key(Qt::Key_Left); });
}

// As fast as one types, then until the answer stands.
void LibraryWalk::type(const char* query) {
    const QString whole = QString::fromUtf8(query);
    measure(fmt::format("search {}", query).c_str(), [&] {
        for (qsizetype length = 1; length <= whole.size(); ++length)
            screen().search()->setQuery(whole.first(length));
        if (whole.isEmpty()) screen().search()->setQuery({});
    });
}

void LibraryWalk::walk() {
    measure("click to list", [&] { whole_.show("library"); });
    measure("back", [&] { whole_.show("home"); });
    measure("click to list again", [&] { whole_.show("library"); });
    QQuickItem* const view = partOf(*whole_.shown().contentItem(), QStringLiteral("libraryView"));
    if (view == nullptr) qFatal("no list of the library");
    view->forceActiveFocus(Qt::TabFocusReason);
    scrollSlowly(*view);
    measure("jump", [&] { view->setProperty("contentY", 400'000); });
    measure("jump back", [&] { view->setProperty("contentY", 400); });
    measure("page down", [&] { key(Qt::Key_PageDown); });
    measure("end", [&] { key(Qt::Key_End); });
    measure("home", [&] { key(Qt::Key_Home); });
    openLargestThread();
    for (const char* query : {"合", "合同", "合同评审", "li", "example", "zzzz", ""}) type(query);
    measure("sort", [&] { screen().setAscending(true); });
    measure("account", [&] { screen().filters()->setAccount(1); });
    measure("years", [&] { screen().filters()->chooseYears(2012, 2014); });
    measure("all again", [&] { screen().filters()->clear(); });
    measure("load again", [&] { whole_.model().library().loader.loadEmailArchiveIndex(std::nullopt, true); });
    for (const char* place : {"archived", "space", "mails"}) measure(place, [&] { whole_.show(place); });
    measure("library", [&] { whole_.show("library"); });
    view->forceActiveFocus(Qt::TabFocusReason);
}

void LibraryWalk::remove() {
    measure("select all", [&] { key(Qt::Key_A, Qt::ControlModifier); });
    measure("ask to remove all", [&] { key(Qt::Key_Delete); });
    measure("do not", [&] { key(Qt::Key_Escape); });
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    TimedApplication application(argc, argv);
    if (argc != 3) {
        fmt::print(stderr, "measure_library_window HOME COUNT\n");
        return 2;
    }
    const std::size_t count = std::strtoul(argv[2], nullptr, 10);
    const auto roots = count > 0 ? makeArchives(argv[1], count) : std::vector<std::string>();
    useWindowFonts();
    const Appearance appearance(Appearance::Scheme::light);
    WholeWindow whole(argv[1]);
    CorvaneViewModel& model = whole.model();
    for (const std::string& root : roots) rememberLocation(model.context().settings, root);
    fmt::print("{{");
    LibraryWalk walk(application, whole);
    walk.measure("first frame", [&] { bench::waitForFirstFrame(whole.shown()); });
    walk.measure("start", [&] { whole.window().startUp(); });
    walk.measure("load", [&] { model.library().loader.loadEmailArchiveIndex(std::nullopt, true); });
    walk.walk();
    walk.remove();
    fmt::print(",\n \"entries\": {}, \"peak megabytes\": {}}}\n",
               model.library().loader.archivedEntries()->size(), peakMemory());
    return 0;
}
