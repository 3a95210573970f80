// A base for file layers that change only some operations of another one: each goes through to that one,
// unless permits() refuses it. Thread-safe as far as the layer below and the derived class are.
#pragma once

#include <cstddef>
#include <string>

#include "platform/files/layers/file_layer.h"

namespace corvane::platform {

class ForwardingFileLayer : public FileLayer {
  public:
    // `files` must outlive this layer.
    explicit ForwardingFileLayer(FileLayer& files)
      : files_(files) {}

    int open(const std::string& path, int flags, mode_t mode) override {
        return permits() ? files_.open(path, flags, mode) : -1;
    }

    ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
        return permits() ? files_.write(descriptor, bytes, count) : -1;
    }

    ssize_t read(int descriptor, void* bytes, std::size_t count) override {
        return permits() ? files_.read(descriptor, bytes, count) : -1;
    }

    int close(int descriptor) override { return files_.close(descriptor); }

    int sync(int descriptor) override { return permits() ? files_.sync(descriptor) : -1; }

    int fullSync(int descriptor) override { return permits() ? files_.fullSync(descriptor) : -1; }

    void bypassCache(int descriptor) override {
        if (permits()) files_.bypassCache(descriptor);
    }

    int statOpen(int descriptor, struct stat& result) override {
        return permits() ? files_.statOpen(descriptor, result) : -1;
    }

    int lock(int descriptor) override { return permits() ? files_.lock(descriptor) : -1; }

    int list(int folder, const EntryVisitor& visit) override {
        return permits() ? files_.list(folder, visit) : -1;
    }

    int openAt(int folder, const std::string& name, int flags, mode_t mode) override {
        return permits() ? files_.openAt(folder, name, flags, mode) : -1;
    }

    int statAt(int folder, const std::string& name, struct stat& result) override {
        return permits() ? files_.statAt(folder, name, result) : -1;
    }

    int makeDirectoryAt(int folder, const std::string& name, mode_t mode) override {
        return permits() ? files_.makeDirectoryAt(folder, name, mode) : -1;
    }

    int renameAt(int folder, const std::string& from, const std::string& to) override {
        return permits() ? files_.renameAt(folder, from, to) : -1;
    }

    int unlinkAt(int folder, const std::string& name) override {
        return permits() ? files_.unlinkAt(folder, name) : -1;
    }

    int stat(const std::string& path, struct stat& result) override {
        return permits() ? files_.stat(path, result) : -1;
    }

    int makeDirectory(const std::string& path, mode_t mode) override {
        return permits() ? files_.makeDirectory(path, mode) : -1;
    }

    int rename(const std::string& from, const std::string& to) override {
        return permits() ? files_.rename(from, to) : -1;
    }

    int unlink(const std::string& path) override { return permits() ? files_.unlink(path) : -1; }

  protected:
    // Asked before every operation but close(), which always happens. False, with errno set, makes the
    // operation fail without an effect.
    [[nodiscard]] virtual bool permits() noexcept { return true; }

  private:
    FileLayer& files_;
};

} // namespace corvane::platform
