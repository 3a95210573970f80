#include "cli/session.h"

#include <chrono>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <fmt/format.h>

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
  : platform_(platform::makePlatform(home))
  , context_(std::make_unique<ModelContext>(*platform_)) {
    resetLogs(*context_);
    leftovers_.emplace(*context_).start();
    model_ = std::make_unique<CorvaneViewModel>(*context_);
    if (const auto& path = context_->settings.setAside())
        messageLine(fmt::format("设置文件无法读取，已按初始设置运行；原来的设置保留在 {}", *path));
}

void Session::waitUntilIdle(const std::function<void()>& onInterrupt) {
    bool handled = false;
    const auto lookForInterrupt = [&] {
        platform::drainQuitSignals(interruptReadEnd);
        if (!wasInterrupted() || handled) return;
        handled = true;
        if (onInterrupt) onInterrupt();
    };
    QSocketNotifier notifier(interruptReadEnd, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, lookForInterrupt);
    lookForInterrupt();
    // The notifications of the library may queue steps that aren't jobs, so the queue is emptied once more at
    // the end.
    do {
        if (handled && !onInterrupt) throw Interrupted();
        QCoreApplication::processEvents(context_->tasks.isIdle() ? QEventLoop::AllEvents
                                                                 : QEventLoop::WaitForMoreEvents);
        if (context_->tasks.isIdle()) QCoreApplication::processEvents();
    } while (!context_->tasks.isIdle());
}

void Session::restoreLastScan() {
    model_->scanFlow().loadCachedScanIfNeeded(true);
    waitUntilIdle();
    const MailScanState& state = model_->scanFlow().state();
    if (state.kind == MailScanState::Kind::failed) throw CommandFailure(state.text);
}

void loadLibrary(Session& session) {
    CorvaneViewModel& model = session.model();
    session.waitUntilIdle();
    model.library().loadEmailArchiveIndex(model.destinations().transferDestination(), true);
    session.waitUntilIdle();
}

} // namespace corvane::cli
