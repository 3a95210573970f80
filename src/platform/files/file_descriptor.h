// Owner of one POSIX file descriptor.
#pragma once

#include <utility>

#include <unistd.h>

namespace corvane::platform {

class FileDescriptor {
  public:
    FileDescriptor() noexcept = default;

    explicit FileDescriptor(int descriptor) noexcept
      : descriptor_(descriptor) {}

    FileDescriptor(FileDescriptor&& other) noexcept
      : descriptor_(std::exchange(other.descriptor_, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) reset(std::exchange(other.descriptor_, -1));
        return *this;
    }

    ~FileDescriptor() { reset(); }

    [[nodiscard]] int get() const noexcept { return descriptor_; }

    explicit operator bool() const noexcept { return descriptor_ >= 0; }

    [[nodiscard]] int release() noexcept { return std::exchange(descriptor_, -1); }

    void reset(int descriptor = -1) noexcept {
        if (descriptor_ >= 0) ::close(descriptor_);
        descriptor_ = descriptor;
    }

  private:
    int descriptor_ = -1;
};

} // namespace corvane::platform
