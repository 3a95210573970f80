// Owner of one descriptor that a file layer has opened.
#pragma once

#include <cerrno>
#include <utility>

#include "platform/files/layers/file_layer.h"

namespace corvane::platform {

class LayerDescriptor {
  public:
    LayerDescriptor() noexcept = default;

    // `files` must outlive it. -1, as after a failed open, is no descriptor.
    LayerDescriptor(FileLayer& files, int descriptor) noexcept
      : files_(&files)
      , descriptor_(descriptor) {}

    LayerDescriptor(LayerDescriptor&& other) noexcept
      : files_(other.files_)
      , descriptor_(std::exchange(other.descriptor_, -1)) {}

    LayerDescriptor& operator=(LayerDescriptor&& other) noexcept {
        if (this == &other) return *this;
        reset();
        files_ = other.files_;
        descriptor_ = std::exchange(other.descriptor_, -1);
        return *this;
    }

    ~LayerDescriptor() { reset(); }

    [[nodiscard]] int get() const noexcept { return descriptor_; }

    explicit operator bool() const noexcept { return descriptor_ >= 0; }

    // errno stays as it is, so that the error before it can still be told.
    void reset() noexcept {
        if (descriptor_ < 0) return;
        const int error = errno;
        files_->close(std::exchange(descriptor_, -1));
        errno = error;
    }

  private:
    FileLayer* files_ = nullptr;
    int descriptor_ = -1;
};

} // namespace corvane::platform
