#include "platform/processes/quit_signals.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

#include "platform/processes/child_process.h"

namespace corvane::platform {

namespace {

// Handlers call only what POSIX allows in them: write(), alarm(), clock_gettime() and _exit().
std::atomic<std::int64_t> firstSignal = 0; // milliseconds of the monotonic clock; 0 for none
static_assert(decltype(firstSignal)::is_always_lock_free);
volatile std::sig_atomic_t patienceSeconds = 0;
int signalWriteEnd = -1;

std::int64_t milliseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000 + 1;
}

// timeout(1) signals its child and then the group that the child is in: that is one request.
constexpr std::int64_t sameRequest = 50;

void handleQuitSignal(int /*signal*/) {
    const int error = errno;
    const std::int64_t now = milliseconds();
    std::int64_t first = 0;
    if (!firstSignal.compare_exchange_strong(first, now)) {
        if (now - first > sameRequest) ::_exit(interruptedStatus);
        return;
    }
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
    return firstSignal != 0;
}

} // namespace corvane::platform
