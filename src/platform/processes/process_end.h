// A descriptor that becomes readable when a child process ends, for poll(2). The child itself stays for
// waitpid(2), so its process id stays taken.
#pragma once

#include <thread>

#include <sys/types.h>

#include "platform/files/file_descriptor.h"

namespace corvane::platform {

class ProcessEnd {
  public:
    ProcessEnd() noexcept = default;

    // `systemDescriptor` is what the system itself offers for this (a pidfd); without it a thread waits.
    // Throws std::system_error.
    ProcessEnd(pid_t child, FileDescriptor systemDescriptor);
    ProcessEnd(ProcessEnd&&) noexcept = default;
    ProcessEnd& operator=(ProcessEnd&&) noexcept = default;

    // The child must have ended, reaped or not.
    ~ProcessEnd();

    [[nodiscard]] int descriptor() const noexcept { return descriptor_.get(); }

  private:
    FileDescriptor descriptor_;
    std::thread waiter_;
};

} // namespace corvane::platform
