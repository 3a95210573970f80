// Steps of the main thread while somebody goes through a large library, painted in software without a screen.
// Prints one JSON object: the longest steps of each thing that is done.
//   measure_library_window HOME COUNT      HOME is filled with an archive of that many records, without files
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <QKeyEvent>
#include <QQuickItem>

#include "library_samples.h"
#include "platform/files/writing/durable_file.h"
#include "platform/paths.h"
#include "records/stores/archive_index_file.h"
#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"
#include "timed_window.h"

namespace {

using namespace corvane;
using bench::TimedApplication;
using bench::WholeWindow;

std::string makeArchive(const std::string& home, std::size_t count) {
    EmailArchiveIndex index{Date(std::chrono::seconds(1)), Date(std::chrono::seconds(2)), {}};
    for (ArchivedEntry& entry : bench::makeArchivedEntries(count)) {
        // Every fortieth answers one mail, which makes a thread of thousands.
        if (index.records.size() % 40 == 1)
            entry.record.referencedMessageIdentifiers = {*index.records.front().messageIdentifier};
        index.records.push_back(std::move(entry.record));
    }
    const std::string root = platform::joinPath(home, "Documents/邮件归档");
    std::filesystem::create_directories(root);
    platform::writeFileAtomically(platform::posixFileLayer(), platform::joinPath(root, archiveIndexFileName),
                                  encodeArchiveIndex(index));
    return root;
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
        fmt::print("{}\"{}\": {{\"seconds\": {:.3f}, \"steps\": {}}}", isFirst_ ? "" : ",\n ", name, seconds,
                   application_.takeSummary());
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
        whole_.waitFor([&] { return !screen().isSearching(); });
        const auto end = bench::Clock::now() + std::chrono::milliseconds(150);
        while (bench::Clock::now() < end) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    void walk();
    void remove();

  private:
    TimedApplication& application_;
    WholeWindow& whole_;
    bool isFirst_ = true;
};

void LibraryWalk::walk() {
    measure("click to list", [&] { whole_.show("library"); });
    auto* view = whole_.shown().findChild<QQuickItem*>(QStringLiteral("libraryView"));
    view->forceActiveFocus(Qt::TabFocusReason);
    measure("scroll", [&] { view->setProperty("contentY", 40'000); });
    measure("scroll back", [&] { view->setProperty("contentY", 400); });
    measure("page down", [&] { key(Qt::Key_PageDown); });
    measure("end", [&] { key(Qt::Key_End); });
    measure("home", [&] { key(Qt::Key_Home); });
    int largest = 0;
    for (int row = 0, most = 0; row < screen().list()->rowCount(); ++row) {
        const int count =
            screen().list()->data(screen().list()->index(row), LibraryRowModel::MemberCountRole).toInt();
        if (count > most) largest = row;
        most = std::max(most, count);
    }
    screen().selection()->select(largest);
    settle();
    measure("open a large thread", [&] { key(Qt::Key_Right); });
    measure("close it", [&] { key(Qt::Key_Left); });
    for (const char* query : {"合", "合同", "合同评审", "zzzz", ""})
        measure(fmt::format("search {}", query).c_str(),
                [&] { screen().setQuery(QString::fromUtf8(query)); });
    measure("sort", [&] { screen().setAscending(true); });
    measure("account", [&] { screen().filters()->setAccount(1); });
    measure("years", [&] { screen().filters()->chooseYears(2012, 2014); });
    measure("all again", [&] { screen().filters()->clear(); });
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
    const std::string root = makeArchive(argv[1], std::strtoul(argv[2], nullptr, 10));
    useWindowFonts();
    const Appearance appearance(Appearance::Scheme::light);
    WholeWindow whole(argv[1]);
    bench::waitForFirstFrame(whole.shown());
    whole.window().startUp();
    whole.waitFor([] { return true; });
    fmt::print("{{");
    LibraryWalk walk(application, whole);
    walk.measure("load", [&] {
        whole.model().archiving().destinations.setTransferDestination(root);
        whole.model().library().loader.loadEmailArchiveIndex(root, true);
    });
    walk.walk();
    walk.remove();
    fmt::print("}}\n");
    return 0;
}
