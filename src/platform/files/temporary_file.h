// A file in the temporary folder that is removed with its owner.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/files/file_descriptor.h"

namespace corvane::platform {

class TemporaryFile {
  public:
    // Creates an empty file named prefix + a fresh UUID + extension in `folder`, only readable by this user.
    // Throws std::system_error when it can't.
    TemporaryFile(const std::string& folder, std::string_view prefix, std::string_view extension);
    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile& operator=(TemporaryFile&& other) noexcept;
    ~TemporaryFile();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

    // Open for writing until closed.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_.get(); }

    void closeDescriptor() noexcept { descriptor_.reset(); }

  private:
    std::string path_;
    FileDescriptor descriptor_;
};

// A random UUID in upper-case hyphenated text (RFC 4122, version 4).
std::string randomUuid();

} // namespace corvane::platform
