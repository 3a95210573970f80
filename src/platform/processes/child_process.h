// Child processes with redirected standard streams. Waiting is woken by the child's end, never by sleeping in
// steps. A child that is still running when its owner goes is killed and reaped.
//
// A child has default signal actions, no open descriptor but its three streams, and a process group of its
// own, so that an interrupt typed at the terminal reaches only this process, which then ends its children in
// order. Where the system can (Linux), children die with this process, however it ends. Each ChildProcess is
// used by one thread at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/types.h>

#include "platform/files/file_descriptor.h"
#include "platform/processes/process_end.h"

namespace corvane::platform {

struct ChildProcessOptions {
    std::string executable{};             // absolute path, no search
    std::vector<std::string> arguments{}; // without the program's name
    // Descriptors of this process that become the child's 0, 1 and 2; -1 is /dev/null. They stay the
    // caller's.
    int standardInput = -1;
    int standardOutput = -1;
    int standardError = -1;
    // Added to this process's environment, in place of a variable of the same name.
    std::vector<std::pair<std::string, std::string>> environment{};
    // Upkeep: it yields the processor to what the user waits for.
    bool isUpkeep = false;
    // No file that the child writes grows beyond this: the write fails, and a child that doesn't handle that
    // dies.
    std::optional<std::int64_t> fileSizeLimitBytes{};
};

class ChildProcess {
  public:
    // Throws std::system_error when the program can't be started, its message the reason.
    explicit ChildProcess(const ChildProcessOptions& options);
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;
    ~ChildProcess();

    // Waits for the end. The exit status, 128 + n for a child that died by signal n.
    int wait();

    // The same; absent when the deadline passes first, or a stop is requested.
    std::optional<int> waitUntil(std::chrono::steady_clock::time_point deadline, std::stop_token stop = {});

    [[nodiscard]] bool isRunning();
    // To the child while it runs, and to what it started in its process group.
    void terminate() noexcept; // SIGTERM
    void kill() noexcept;      // SIGKILL

    // SIGTERM, a short grace, SIGKILL, and the wait for the end.
    void terminateAndWait();

  private:
    // Takes the status of an ended child; false while it runs.
    bool reap(int waitFlags) noexcept;

    pid_t pid_ = -1;
    ProcessEnd end_;
    std::optional<int> exitStatus_;
};

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

// Close-on-exec on both ends. Throws std::system_error.
Pipe makePipe();

// write(2) to a pipe or socket whose reader may be gone: that is EPIPE then, never SIGPIPE.
ssize_t writeToPipe(int descriptor, std::string_view bytes) noexcept;

struct CapturedOutput {
    int exitStatus = 0;
    std::string output;
    std::string errorOutput;
};

// Runs a program to its end and gives what it wrote; both streams are drained together, so neither can block.
// A program that doesn't take all of the input isn't an error. Throws std::system_error when it can't be
// started.
CapturedOutput runAndCapture(const std::string& executable, const std::vector<std::string>& arguments,
                             std::string_view input = {});

} // namespace corvane::platform
