// What a program is started with, in the form that execve(2) and posix_spawn(2) ask for.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/files/file_descriptor.h"
#include "platform/processes/child_process.h"

namespace corvane::platform {

class LaunchTexts {
  public:
    // `environment` is that of this process. Throws std::system_error for a text with a NUL, which would
    // reach the program cut short.
    LaunchTexts(const ChildProcessOptions& options, char** environment);
    LaunchTexts(LaunchTexts&&) = default;

    [[nodiscard]] const char* executable() const noexcept { return arguments_.front(); }

    // Ended by a null pointer; they live as long as this object.
    [[nodiscard]] char* const* arguments() const noexcept { return arguments_.data(); }

    [[nodiscard]] char* const* environment() const noexcept { return environment_.data(); }

  private:
    std::vector<std::string> argumentTexts_;
    std::vector<std::string> environmentTexts_;
    std::vector<char*> arguments_;
    std::vector<char*> environment_;
};

// What becomes a child's three standard streams: close-on-exec copies above them, so that the child can put
// each into its place without closing another.
class LaunchStreams {
  public:
    // Throws std::system_error.
    explicit LaunchStreams(const ChildProcessOptions& options);

    [[nodiscard]] int source(int stream) const noexcept {
        return sources_[static_cast<std::size_t>(stream)].get();
    }

  private:
    std::array<FileDescriptor, 3> sources_;
};

// A close-on-exec copy that isn't one of the standard streams. Throws std::system_error.
FileDescriptor copyAboveStandardStreams(int descriptor);

} // namespace corvane::platform
