#include "platform/processes/process_start.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>
#include <utility>

#include <crt_externs.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/event.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/macos/desktop_commands.h"
#include "platform/processes/launch_texts.h"

namespace corvane::platform {

namespace {

[[noreturn]] void throwError(int error, const std::string& what) {
    throw std::system_error(error, std::generic_category(), what);
}

// The functions of this family return their error.
void require(int error, const char* what) {
    if (error != 0) throwError(error, what);
}

class SpawnActions {
  public:
    explicit SpawnActions(const LaunchStreams& streams) {
        require(::posix_spawn_file_actions_init(&actions_), "posix_spawn_file_actions_init");
        for (int target = 0; target < 3; ++target) {
            error_ = ::posix_spawn_file_actions_adddup2(&actions_, streams.source(target), target);
            if (error_ != 0) return;
        }
    }

    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

    [[nodiscard]] int error() const { return error_; }

  private:
    posix_spawn_file_actions_t actions_{};
    int error_ = 0;
};

// A process group of its own, default signals, an empty mask, and no descriptor but what the actions make.
class SpawnAttributes {
  public:
    SpawnAttributes() {
        require(::posix_spawnattr_init(&attributes_), "posix_spawnattr_init");
        sigset_t all;
        sigfillset(&all);
        // The system refuses to have these two set, even to what they are.
        sigdelset(&all, SIGKILL);
        sigdelset(&all, SIGSTOP);
        sigset_t none;
        sigemptyset(&none);
        constexpr int flags = POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK |
                              POSIX_SPAWN_CLOEXEC_DEFAULT;
        for (const int error : {::posix_spawnattr_setflags(&attributes_, static_cast<short>(flags)),
                                ::posix_spawnattr_setpgroup(&attributes_, 0),
                                ::posix_spawnattr_setsigdefault(&attributes_, &all),
                                ::posix_spawnattr_setsigmask(&attributes_, &none)}) {
            if (error != 0) error_ = error;
        }
    }

    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

    [[nodiscard]] int error() const { return error_; }

  private:
    posix_spawnattr_t attributes_{};
    int error_ = 0;
};

// Readable at once; invalid where none can be made.
FileDescriptor closedPipe() noexcept {
    try {
        return std::move(makePipe().readEnd);
    } catch (const std::system_error&) {
        return {};
    }
}

// Leaves its status to be waited for.
bool hasEnded(pid_t pid) {
    siginfo_t status{};
    const int result = ::waitid(P_PID, static_cast<id_t>(pid), &status, WEXITED | WNOHANG | WNOWAIT);
    return result == 0 && status.si_pid == pid;
}

// A queue whose one event is the end of the process. Invalid where the queue can't be made.
FileDescriptor endOfProcess(pid_t pid) {
    FileDescriptor queue(::kqueue());
    if (!queue) return {};
    struct kevent end{};
    EV_SET(&end, static_cast<uintptr_t>(pid), EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
    const bool isWatched = ::kevent(queue.get(), &end, 1, nullptr, 0, nullptr) == 0;
    if (!isWatched && errno != ESRCH) return {};
    // Of an end before the watch there may be no event.
    return isWatched && !hasEnded(pid) ? std::move(queue) : closedPipe();
}

pid_t spawn(const ChildProcessOptions& options) {
    const LaunchTexts texts(options, *::_NSGetEnviron());
    const LaunchStreams streams(options);
    const SpawnActions actions(streams);
    const SpawnAttributes attributes;
    require(actions.error(), "posix_spawn_file_actions_adddup2");
    require(attributes.error(), "posix_spawnattr");
    pid_t pid = -1;
    const int error = ::posix_spawn(&pid, texts.executable(), actions.get(), attributes.get(),
                                    texts.arguments(), texts.environment());
    if (error != 0) throwError(error, options.executable);
    return pid;
}

pid_t spawnLimited(const ChildProcessOptions& options) {
    // The shell would start, and report this only by its exit status.
    if (::access(options.executable.c_str(), X_OK) != 0) throwError(errno, options.executable);
    return spawn(macos::withLimitByShell(options));
}

} // namespace

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throwError(errno, "pipe");
    Pipe pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    // No other thread's child can get them in between: children inherit only what they are given.
    for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
    // The signal is sent to the process here, not to the writing thread, whose mask wouldn't keep it away.
    ::fcntl(pipe.writeEnd.get(), F_SETNOSIGPIPE, 1);
    return pipe;
}

StartedProcess startProcess(const ChildProcessOptions& options) {
    constexpr int upkeepNiceness = 10;
    const pid_t pid = options.fileSizeLimitBytes ? spawnLimited(options) : spawn(options);
    if (options.isUpkeep) ::setpriority(PRIO_PROCESS, static_cast<id_t>(pid), upkeepNiceness);
    return {pid, endOfProcess(pid)};
}

} // namespace corvane::platform
