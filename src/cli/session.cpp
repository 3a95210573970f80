#include "cli/session.h"

#include <chrono>
#include <utility>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <fmt/format.h>

#include "cli/unreadable_archives.h"
#include "locations/loading/quick_library.h"
#include "model/unkept_data.h"
#include "platform/files/directory.h"
#include "platform/processes/quit_signals.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

// For what the first signal asks to end: a message at work, an index to be saved, a place that doesn't
// answer.
constexpr std::chrono::seconds endPatience{9};

int interruptReadEnd = -1;

// They tell of one run, but for that of an open window, which goes on writing to them. A window that was
// killed leaves its lock, and the next one empties them.
void resetLogs(ModelContext& context) {
    if (platform::fileExists(context.support.filePath(windowLockFileName))) return;
    context.performanceLog.reset();
    context.startupLog.reset();
}

} // namespace

void catchInterrupts() {
    interruptReadEnd = platform::catchQuitSignals(endPatience);
}

bool wasInterrupted() {
    return platform::wasAskedToQuit();
}

Session::Session(const std::string& home)
  : platform_(makeOwnedPlatform(home))
  , context_(std::make_unique<ModelContext>(*platform_)) {
    resetLogs(*context_);
    if (const auto& path = context_->settings.setAside())
        messageLine(fmt::format("设置文件无法读取，已按初始设置运行；原来的设置保留在 {}", *path));
    if (context_->settings.isUnreadable())
        messageLine("设置文件暂时无法读取，已按初始设置运行；文件没有改动，这次的更改不会保存");
}

Session::~Session() {
    const std::string failure = unkeptText(*context_);
    if (!failure.empty() && failure != toldFailure_) messageLine(failure);
}

CorvaneViewModel& Session::model() {
    if (!model_) {
        leftovers_.emplace(*context_).start();
        model_ = std::make_unique<CorvaneViewModel>(*context_);
    }
    return *model_;
}

const QuickLibrary* Session::quickLibrary() {
    if (!std::exchange(isQuickLibraryKnown_, true)) {
        PlaceLooks looks(*platform_, context_->support.files(), {});
        if (auto library = QuickLibrary::open(*platform_, context_->support, context_->settings, looks))
            quickLibrary_ = std::make_unique<const QuickLibrary>(std::move(*library));
        if (quickLibrary_) tellUnreadable(quickLibrary_->unreadableRoots());
    }
    return quickLibrary_.get();
}

void Session::dropQuickLibrary() {
    quickLibrary_.reset();
}

void Session::waitUntilIdle(const std::function<void()>& onInterrupt) {
    waitUntil(&TaskRunner::isIdle, onInterrupt);
}

void Session::waitUntil(bool (TaskRunner::*isReached)() const, const std::function<void()>& onInterrupt) {
    bool handled = false;
    const auto lookForInterrupt = [&] {
        platform::drainQuitSignals(interruptReadEnd);
        if (!wasInterrupted() || handled) return;
        handled = true;
        if (onInterrupt) onInterrupt();
        isReached = &TaskRunner::isQuiet; // what goes on aside isn't waited for any more
    };
    QSocketNotifier notifier(interruptReadEnd, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, lookForInterrupt);
    lookForInterrupt();
    // The notifications of the library may queue steps that aren't jobs, so the queue is emptied once more at
    // the end.
    const auto isThere = [&] { return (context_->tasks.*isReached)(); };
    do {
        if (handled && !onInterrupt) throw Interrupted();
        QCoreApplication::processEvents(isThere() ? QEventLoop::AllEvents : QEventLoop::WaitForMoreEvents);
        if (isThere()) QCoreApplication::processEvents();
    } while (!isThere());
    if (model_ && !handled) tellUnreadable(model_->library().loader.unreadableRoots());
}

void Session::tellUnreadable(const std::vector<std::string>& roots) {
    for (const std::string& root : roots) {
        if (toldRoots_.insert(root).second) tellUnreadableArchive(root);
    }
}

void Session::requireKept(std::string unkept) {
    toldFailure_ = std::move(unkept);
    if (!toldFailure_.empty()) throw CommandFailure(toldFailure_);
}

void Session::restoreLastScan(Restored restored) {
    model().mail().scanFlow.loadCachedScanIfNeeded(true);
    waitUntil(restored == Restored::whole ? &TaskRunner::isIdle : &TaskRunner::isQuiet, {});
    const MailScanState& state = model().mail().scanFlow.state();
    if (state.kind == MailScanState::Kind::failed) throw CommandFailure(state.text);
}

void loadLibrary(Session& session) {
    CorvaneViewModel& model = session.model();
    session.waitUntilIdle();
    model.library().loader.loadEmailArchiveIndex(model.archiving().destinations.transferDestination(), true);
    session.waitUntilIdle();
    session.isLibraryLoaded_ = true;
}

} // namespace corvane::cli
