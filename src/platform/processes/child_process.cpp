#include "platform/processes/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>

#include "platform/processes/process_start.h"
#include "platform/processes/timed_poll.h"

namespace corvane::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds terminationGrace{1};

[[noreturn]] void throwLastError(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// Keeps SIGPIPE from this thread for one write, and takes away the one that the write raised.
class PipeSignalBlock {
  public:
    PipeSignalBlock() noexcept {
        sigemptyset(&pipeSignal_);
        sigaddset(&pipeSignal_, SIGPIPE);
        wasPending_ = isPending();
        ::pthread_sigmask(SIG_BLOCK, &pipeSignal_, &earlier_);
    }

    PipeSignalBlock(const PipeSignalBlock&) = delete;
    PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;

    ~PipeSignalBlock() {
        const int error = errno;
        int taken = 0;
        if (!wasPending_ && isPending()) ::sigwait(&pipeSignal_, &taken);
        ::pthread_sigmask(SIG_SETMASK, &earlier_, nullptr);
        errno = error;
    }

  private:
    static bool isPending() noexcept {
        sigset_t pending;
        sigemptyset(&pending);
        ::sigpending(&pending);
        return sigismember(&pending, SIGPIPE) == 1;
    }

    sigset_t pipeSignal_{};
    sigset_t earlier_{};
    bool wasPending_ = false;
};

// The three streams of a program that is run to its end.
class Conversation {
  public:
    Conversation(FileDescriptor input, FileDescriptor output, FileDescriptor errorOutput,
                 std::string_view toSend)
      : input_(std::move(input))
      , output_(std::move(output))
      , errorOutput_(std::move(errorOutput))
      , toSend_(toSend) {
        if (input_) ::fcntl(input_.get(), F_SETFL, O_NONBLOCK);
    }

    void run(CapturedOutput& captured) {
        while (output_ || errorOutput_) {
            std::array<pollfd, 3> streams{
                {{input_.get(), POLLOUT, 0}, {output_.get(), POLLIN, 0}, {errorOutput_.get(), POLLIN, 0}}};
            if (::poll(streams.data(), streams.size(), -1) < 0 && errno != EINTR) throwLastError("poll");
            if (streams[0].revents != 0) send();
            if (streams[1].revents != 0) receive(output_, captured.output);
            if (streams[2].revents != 0) receive(errorOutput_, captured.errorOutput);
        }
    }

  private:
    void send() {
        const ssize_t sent = writeToPipe(input_.get(), toSend_);
        if (sent > 0) toSend_.remove_prefix(static_cast<std::size_t>(sent));
        const bool failed = sent < 0 && errno != EAGAIN && errno != EINTR;
        if (toSend_.empty() || failed) input_.reset();
    }

    void receive(FileDescriptor& stream, std::string& target) {
        const ssize_t got = ::read(stream.get(), buffer_.data(), buffer_.size());
        if (got > 0) {
            target.append(buffer_.data(), static_cast<std::size_t>(got));
        } else if (got == 0 || errno != EINTR) {
            stream.reset();
        }
    }

    FileDescriptor input_;
    FileDescriptor output_;
    FileDescriptor errorOutput_;
    std::string_view toSend_;
    std::array<char, 65536> buffer_{};
};

} // namespace

ChildProcess::ChildProcess(const ChildProcessOptions& options) {
    StartedProcess started = startProcess(options);
    pid_ = started.pid;
    try {
        end_ = ProcessEnd(pid_, std::move(started.endDescriptor));
    } catch (...) {
        kill();
        wait();
        throw;
    }
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
  : pid_(std::exchange(other.pid_, -1))
  , end_(std::move(other.end_))
  , exitStatus_(other.exitStatus_) {}

ChildProcess::~ChildProcess() {
    if (pid_ < 0) return;
    kill();
    wait();
}

bool ChildProcess::reap(int waitFlags) noexcept {
    if (exitStatus_) return true;
    int raw = 0;
    pid_t ended = 0;
    do {
        ended = ::waitpid(pid_, &raw, waitFlags);
    } while (ended < 0 && errno == EINTR);
    if (ended == 0) return false;
    if (ended < 0) {
        // Somebody else took the status (SIGCHLD ignored): the child is gone, and success can't be claimed.
        exitStatus_ = 255;
    } else {
        exitStatus_ = WIFSIGNALED(raw) ? 128 + WTERMSIG(raw) : WEXITSTATUS(raw);
    }
    return true;
}

int ChildProcess::wait() {
    reap(0);
    return *exitStatus_;
}

std::optional<int> ChildProcess::waitUntil(std::chrono::steady_clock::time_point deadline,
                                           std::stop_token stop) {
    const StopSignal stopSignal(std::move(stop));
    while (!reap(WNOHANG)) {
        std::array<pollfd, 2> events{{{end_.descriptor(), POLLIN, 0}, {stopSignal.descriptor(), POLLIN, 0}}};
        const int timeout = pollTimeout(deadline);
        const int ready = ::poll(events.data(), events.size(), timeout);
        if (ready < 0 && errno != EINTR) throwLastError("poll");
        if (ready < 0 || events[0].revents != 0) continue;
        if (events[1].revents != 0 || timeout == 0) break;
    }
    return exitStatus_;
}

bool ChildProcess::isRunning() {
    return !reap(WNOHANG);
}

void ChildProcess::terminate() noexcept {
    if (!reap(WNOHANG)) ::kill(-pid_, SIGTERM);
}

void ChildProcess::kill() noexcept {
    if (!reap(WNOHANG)) ::kill(-pid_, SIGKILL);
}

void ChildProcess::terminateAndWait() {
    terminate();
    if (waitUntil(Clock::now() + terminationGrace)) return;
    kill();
    wait();
}

ssize_t writeToPipe(int descriptor, std::string_view bytes) noexcept {
    const PipeSignalBlock block;
    return ::write(descriptor, bytes.data(), bytes.size());
}

CapturedOutput runAndCapture(const std::string& executable, const std::vector<std::string>& arguments,
                             std::string_view input) {
    Pipe inputPipe = input.empty() ? Pipe() : makePipe();
    Pipe outputPipe = makePipe();
    Pipe errorPipe = makePipe();
    ChildProcess child({.executable = executable,
                        .arguments = arguments,
                        .standardInput = inputPipe.readEnd.get(),
                        .standardOutput = outputPipe.writeEnd.get(),
                        .standardError = errorPipe.writeEnd.get()});
    inputPipe.readEnd.reset();
    outputPipe.writeEnd.reset();
    errorPipe.writeEnd.reset();
    CapturedOutput captured;
    Conversation(std::move(inputPipe.writeEnd), std::move(outputPipe.readEnd), std::move(errorPipe.readEnd),
                 input)
        .run(captured);
    captured.exitStatus = child.wait();
    return captured;
}

} // namespace corvane::platform
