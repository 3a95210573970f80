#include "platform/processes/timed_pipe.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "platform/processes/child_process.h"
#include "platform/processes/timed_poll.h"

namespace corvane::platform {

namespace {

[[noreturn]] void throwLastError(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// `done` when the descriptor has an event; what that is, the read or write that follows tells.
PipeOutcome waitFor(int descriptor, short events, PipeDeadline deadline, const StopSignal& stop) {
    while (true) {
        std::array<pollfd, 2> watched{{{descriptor, events, 0}, {stop.descriptor(), POLLIN, 0}}};
        const int timeout = pollTimeout(deadline);
        const int ready = ::poll(watched.data(), watched.size(), timeout);
        if (ready < 0 && errno != EINTR) throwLastError("poll");
        if (ready < 0) continue;
        if (watched[1].revents != 0) return PipeOutcome::stopped;
        if (watched[0].revents != 0) return PipeOutcome::done;
        if (timeout == 0) return PipeOutcome::timedOut;
    }
}

} // namespace

PipeOutcome sendAll(int descriptor, std::string_view bytes, PipeDeadline deadline,
                    const std::stop_token& stop) {
    const StopSignal stopSignal(stop);
    ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    while (!bytes.empty()) {
        const PipeOutcome writable = waitFor(descriptor, POLLOUT, deadline, stopSignal);
        if (writable != PipeOutcome::done) return writable;
        const ssize_t sent = writeToPipe(descriptor, bytes);
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno == EPIPE) {
            return PipeOutcome::ended;
        } else if (errno != EAGAIN && errno != EINTR) {
            throwLastError("write");
        }
    }
    return PipeOutcome::done;
}

PipeOutcome receiveSome(int descriptor, std::string& received, PipeDeadline deadline,
                        const std::stop_token& stop) {
    const StopSignal stopSignal(stop);
    std::array<char, 65536> buffer;
    while (true) {
        const PipeOutcome readable = waitFor(descriptor, POLLIN, deadline, stopSignal);
        if (readable != PipeOutcome::done) return readable;
        const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
        if (got > 0) received.append(buffer.data(), static_cast<std::size_t>(got));
        if (got > 0) return PipeOutcome::done;
        if (got == 0) return PipeOutcome::ended;
        if (errno != EINTR) throwLastError("read");
    }
}

} // namespace corvane::platform
