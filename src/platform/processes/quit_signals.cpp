#include "platform/processes/quit_signals.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

#include "platform/processes/child_process.h"

namespace corvane::platform {

namespace {

// The handler writes a byte, the event loop reads it: nothing but write() is allowed in a handler.
volatile std::sig_atomic_t signalCount = 0;
int signalWriteEnd = -1;

void noteSignal(int /*signal*/) {
    signalCount = signalCount + 1;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signalWriteEnd, &byte, 1);
}

} // namespace

int noteQuitSignals() {
    Pipe pipe = makePipe();
    const int readEnd = pipe.readEnd.release();
    signalWriteEnd = pipe.writeEnd.release();
    ::fcntl(signalWriteEnd, F_SETFL, O_NONBLOCK);
    ::fcntl(readEnd, F_SETFL, O_NONBLOCK);
    struct sigaction action{};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    return readEnd;
}

void takeQuitSignals(int descriptor) noexcept {
    char byte = 0;
    while (::read(descriptor, &byte, 1) > 0) {
    }
}

bool wasAskedToQuit() noexcept {
    return signalCount > 0;
}

} // namespace corvane::platform
