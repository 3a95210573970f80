// Files and folders in the temporary folder that are removed with their owner. While it lives they are
// claimed (file_claim.h), so that the next start can remove those of a killed process (leftovers.h).
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

    // Open for writing until closed. The claim outlives that.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_.get(); }

    void closeDescriptor() noexcept { descriptor_.reset(); }

  private:
    std::string path_;
    FileDescriptor descriptor_;
    FileDescriptor claim_; // another one of the same open file
};

class TemporaryFolder {
  public:
    // Makes an empty folder named prefix + a fresh UUID in `folder`, open to this user only. Throws
    // std::system_error when it can't.
    TemporaryFolder(const std::string& folder, std::string_view prefix);
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // Goes with all that is in it.
    ~TemporaryFolder();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

  private:
    std::string path_;
    FileDescriptor claim_;
};

// A random UUID in upper-case hyphenated text (RFC 4122, version 4).
std::string randomUuid();

} // namespace corvane::platform
