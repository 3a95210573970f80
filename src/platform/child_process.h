// Child processes with redirected standard streams. Waiting is woken by the child's end (pidfd), never by
// sleeping in steps. A child that is still running when its owner goes is killed and reaped.
#pragma once

#include <chrono>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include <sys/types.h>

#include "platform/file_descriptor.h"

namespace corvane::platform {

struct ChildProcessOptions {
    std::string executable; // absolute path, no search
    std::vector<std::string> arguments; // without the program's name
    // Descriptors of this process that become the child's 0, 1 and 2; -1 is /dev/null.
    int standardInput = -1;
    int standardOutput = -1;
    int standardError = -1;
    // Added to this process's environment.
    std::vector<std::pair<std::string, std::string>> environment;
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

    // The same, but nothing when the deadline passes first, or a stop is requested.
    std::optional<int> waitUntil(std::chrono::steady_clock::time_point deadline, std::stop_token stop = {});

    [[nodiscard]] bool isRunning();
    void terminate() noexcept; // SIGTERM
    void kill() noexcept; // SIGKILL

    // SIGTERM, a short grace, SIGKILL, and the wait for the end.
    void terminateAndWait();

  private:
    void remember(int rawStatus) noexcept;

    pid_t pid_ = -1;
    FileDescriptor pidDescriptor_;
    std::optional<int> exitStatus_;
};

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

// Close-on-exec on both ends. Throws std::system_error.
Pipe makePipe();

struct CapturedOutput {
    int exitStatus = 0;
    std::string output;
    std::string errorOutput;
};

// Runs a program to its end and gives what it wrote; both streams are drained together, so neither can block.
// Throws std::system_error when it can't be started.
CapturedOutput runAndCapture(const std::string& executable, const std::vector<std::string>& arguments,
                             std::string_view input = {});

} // namespace corvane::platform
