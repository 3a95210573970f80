#include "cli/session.h"

#include <csignal>

#include <QCoreApplication>
#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include "platform/child_process.h"

namespace corvane::cli {

namespace {

// The handler writes a byte, the event loop reads it: nothing but write() is allowed in a handler.
volatile std::sig_atomic_t interruptCount = 0;
int interruptWriteEnd = -1;
int interruptReadEnd = -1;

void noteSignal(int /*signal*/) {
    interruptCount = interruptCount + 1;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(interruptWriteEnd, &byte, 1);
}

} // namespace

void noteInterrupts() {
    platform::Pipe pipe = platform::makePipe();
    interruptReadEnd = pipe.readEnd.release();
    interruptWriteEnd = pipe.writeEnd.release();
    ::fcntl(interruptWriteEnd, F_SETFL, O_NONBLOCK);
    ::fcntl(interruptReadEnd, F_SETFL, O_NONBLOCK);
    struct sigaction action{};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

bool wasInterrupted() {
    return interruptCount > 0;
}

Session::Session(const std::string& home)
  : platform_(platform::makePlatform(home))
  , context_(std::make_unique<ModelContext>(*platform_)) {
    context_->performanceLog.reset();
    context_->startupLog.reset();
    model_ = std::make_unique<CorvaneViewModel>(*context_);
}

void Session::waitUntilIdle(const std::function<void()>& onInterrupt) {
    bool handled = false;
    const auto lookForInterrupt = [&] {
        char byte = 0;
        while (::read(interruptReadEnd, &byte, 1) > 0) {
        }
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

} // namespace corvane::cli
