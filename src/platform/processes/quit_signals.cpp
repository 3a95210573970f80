#include "platform/processes/quit_signals.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

#include "platform/processes/child_process.h"

namespace corvane::platform {

namespace {

// Handlers call only what POSIX allows in them: write(), alarm() and _exit().
volatile std::sig_atomic_t signalCount = 0;
volatile std::sig_atomic_t patienceSeconds = 0;
int signalWriteEnd = -1;

void handleQuitSignal(int /*signal*/) {
    if (signalCount > 0) ::_exit(interruptedStatus);
    signalCount = 1;
    const int error = errno;
    if (patienceSeconds > 0) ::alarm(static_cast<unsigned>(patienceSeconds));
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signalWriteEnd, &byte, 1);
    errno = error;
}

void handleEndOfPatience(int /*signal*/) {
    constexpr char words[] = "\n已中断：有一步没有及时结束，下次运行会接着做。\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, words, sizeof words - 1);
    ::_exit(interruptedStatus);
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action{};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

} // namespace

int catchQuitSignals(std::optional<std::chrono::seconds> patience) {
    Pipe pipe = makePipe();
    const int readEnd = pipe.readEnd.release();
    signalWriteEnd = pipe.writeEnd.release();
    ::fcntl(signalWriteEnd, F_SETFL, O_NONBLOCK);
    ::fcntl(readEnd, F_SETFL, O_NONBLOCK);
    if (patience) {
        patienceSeconds = static_cast<std::sig_atomic_t>(patience->count());
        handle(SIGALRM, handleEndOfPatience);
    }
    handle(SIGINT, handleQuitSignal);
    handle(SIGTERM, handleQuitSignal);
    return readEnd;
}

void drainQuitSignals(int descriptor) noexcept {
    char byte = 0;
    while (::read(descriptor, &byte, 1) > 0) {
    }
}

bool wasAskedToQuit() noexcept {
    return signalCount > 0;
}

} // namespace corvane::platform
