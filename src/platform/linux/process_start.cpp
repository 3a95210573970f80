#include "platform/processes/process_start.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <deque>
#include <future>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/processes/launch_texts.h"

#include "text/mutex.h"

namespace corvane::platform {

namespace {

// Everything that the child needs, made before it exists: it shares this process's memory until its exec, so
// it may only call what is safe in a signal handler.
struct Launch {
    Launch(const ChildProcessOptions& options, int errorDescriptor)
      : texts(options, environ)
      , streams(options)
      , errorWriter(copyAboveStandardStreams(errorDescriptor))
      , isUpkeep(options.isUpkeep) {
        if (!options.fileSizeLimitBytes) return;
        const auto bytes = static_cast<rlim_t>(*options.fileSizeLimitBytes);
        fileSizeLimit = rlimit{.rlim_cur = bytes, .rlim_max = bytes};
    }

    LaunchTexts texts;
    LaunchStreams streams;
    FileDescriptor errorWriter;
    pid_t parent = ::getpid();
    bool isUpkeep;
    std::optional<rlimit> fileSizeLimit;
};

[[noreturn]] void throwLastError(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// exec() resets handlers but keeps ignored signals ignored, and the mask.
void restoreDefaultSignals() noexcept {
    struct sigaction defaultAction{};
    defaultAction.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal) ::sigaction(signal, &defaultAction, nullptr);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

bool attachStandardStreams(const Launch& launch) noexcept {
    for (int target = 0; target < 3; ++target) {
        if (::dup2(launch.streams.source(target), target) < 0) return false;
    }
    return true;
}

[[noreturn]] void runInChild(const Launch& launch) noexcept {
    constexpr int upkeepNiceness = 10;
    ::setpgid(0, 0);
    if (launch.isUpkeep) ::setpriority(PRIO_PROCESS, 0, upkeepNiceness);
    if (launch.fileSizeLimit) ::setrlimit(RLIMIT_FSIZE, &*launch.fileSizeLimit);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have gone before the line above.
    if (::getppid() != launch.parent) ::_exit(127);
    if (attachStandardStreams(launch)) {
        // Descriptors of libraries that forgot to set the flag. Kernels before 5.11 refuse, and nothing is
        // lost.
        ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
        restoreDefaultSignals();
        ::execve(launch.texts.executable(), launch.texts.arguments(), launch.texts.environment());
    }
    const int error = errno;
    [[maybe_unused]] const ssize_t written = ::write(launch.errorWriter.get(), &error, sizeof error);
    ::_exit(127);
}

// vfork: a fork would copy the page tables of a process that may hold millions of records.
// The caller's signals are blocked, so no handler of ours can run in the child on shared memory.
[[gnu::noinline]] pid_t startChild(const Launch& launch) noexcept {
    const pid_t pid =
        ::vfork(); // NOLINT(bugprone-unsafe-functions, clang-analyzer-security.insecureAPI.vfork)
    if (pid == 0) runInChild(launch); // NOLINT(clang-analyzer-unix.Vfork): system calls only
    return pid < 0 ? -errno : pid;
}

// The error that kept the child from its program; 0 when it runs.
int startError(int errorReader) noexcept {
    int error = 0;
    ssize_t got = 0;
    do {
        got = ::read(errorReader, &error, sizeof error);
    } while (got < 0 && errno == EINTR);
    return got == sizeof error ? error : 0;
}

void reapFailedChild(pid_t pid) noexcept {
    while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

// Not by glibc's function: the header of 2.36 declares it without C linkage.
FileDescriptor openProcessDescriptor(pid_t pid) noexcept {
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
}

// The one thread that starts children. The death signal of PR_SET_PDEATHSIG comes when the starting *thread*
// ends, so a child started by a short task would be killed in the middle of its work; this thread ends with
// the process and not before.
class Starter {
  public:
    // Never destroyed: the thread uses it to the last moment.
    static Starter& instance() {
        static auto* const starter = new Starter;
        return *starter;
    }

    // As vfork(2), with errno as a negative result.
    pid_t start(const Launch& launch) {
        std::packaged_task<pid_t()> task([&launch] { return startChild(launch); });
        std::future<pid_t> result = task.get_future();
        {
            const text::MutexLock lock(mutex_);
            tasks_.push_back(std::move(task));
        }
        added_.notifyOne();
        return result.get();
    }

  private:
    Starter() {
        std::thread([this] { run(); }).detach();
    }

    [[noreturn]] void run() {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
        while (true) next()();
    }

    std::packaged_task<pid_t()> next() {
        text::MutexLock lock(mutex_);
        added_.wait(lock, [this]() REQUIRES(mutex_) { return !tasks_.empty(); });
        auto task = std::move(tasks_.front());
        tasks_.pop_front();
        return task;
    }

    text::Mutex mutex_;
    text::Condition added_;
    std::deque<std::packaged_task<pid_t()>> tasks_ GUARDED_BY(mutex_);
};

} // namespace

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throwLastError("pipe");
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

StartedProcess startProcess(const ChildProcessOptions& options) {
    Pipe errorPipe = makePipe();
    Launch launch(options, errorPipe.writeEnd.get());
    errorPipe.writeEnd.reset();
    const pid_t pid = Starter::instance().start(launch);
    launch.errorWriter.reset();
    const int error = pid < 0 ? -pid : startError(errorPipe.readEnd.get());
    if (error == 0) return {pid, openProcessDescriptor(pid)};
    if (pid > 0) reapFailedChild(pid);
    throw std::system_error(error, std::generic_category(), options.executable);
}

} // namespace corvane::platform
