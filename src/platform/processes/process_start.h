// The start of a child process, as child_process.h promises it, by the means of the system. makePipe() of
// that header is defined beside it, since systems differ there too.
#pragma once

#include <sys/types.h>

#include "platform/processes/child_process.h"

namespace corvane::platform {

struct StartedProcess {
    pid_t pid = -1;
    // Readable when the process has ended; invalid where the system has no such descriptor.
    FileDescriptor endDescriptor;
};

// Returns when the new program runs. Throws std::system_error.
StartedProcess startProcess(const ChildProcessOptions& options);

} // namespace corvane::platform
