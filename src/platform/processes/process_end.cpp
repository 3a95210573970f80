#include "platform/processes/process_end.h"

#include <cerrno>

#include <sys/wait.h>

#include "platform/processes/child_process.h"

namespace corvane::platform {

ProcessEnd::ProcessEnd(pid_t child, FileDescriptor systemDescriptor)
  : descriptor_(std::move(systemDescriptor)) {
    if (descriptor_) return;
    Pipe pipe = makePipe();
    descriptor_ = std::move(pipe.readEnd);
    // The end shows as the hang-up of the pipe.
    waiter_ = std::thread([child, held = std::move(pipe.writeEnd)] {
        siginfo_t ignored{};
        while (::waitid(P_PID, static_cast<id_t>(child), &ignored, WEXITED | WNOWAIT) != 0 &&
               errno == EINTR) {
        }
    });
}

ProcessEnd::~ProcessEnd() {
    if (waiter_.joinable()) waiter_.join();
}

} // namespace corvane::platform
