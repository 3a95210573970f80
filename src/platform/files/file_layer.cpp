#include "platform/files/file_layer.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "platform/files/nameable_path.h"
#include "platform/files/storage_flush.h"

namespace corvane::platform {

namespace {

class PosixFileLayer final : public FileLayer {
  public:
    int open(const std::string& path, int flags, mode_t mode) override {
        return isNameable(path) ? ::open(path.c_str(), flags | O_CLOEXEC, mode) : -1;
    }

    ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
        return ::write(descriptor, bytes, count);
    }

    ssize_t read(int descriptor, void* bytes, std::size_t count) override {
        return ::read(descriptor, bytes, count);
    }

    int close(int descriptor) override { return ::close(descriptor); }

    int sync(int descriptor) override { return ::fsync(descriptor); }

    int fullSync(int descriptor) override { return flushToMedium(descriptor); }

    void bypassCache(int descriptor) override { dropCachedPages(descriptor); }

    int stat(const std::string& path, struct stat& result) override {
        return isNameable(path) ? ::stat(path.c_str(), &result) : -1;
    }

    int makeDirectory(const std::string& path, mode_t mode) override {
        return isNameable(path) ? ::mkdir(path.c_str(), mode) : -1;
    }

    int rename(const std::string& from, const std::string& to) override {
        return isNameable(from) && isNameable(to) ? ::rename(from.c_str(), to.c_str()) : -1;
    }

    int unlink(const std::string& path) override { return isNameable(path) ? ::unlink(path.c_str()) : -1; }
};

} // namespace

FileLayer& posixFileLayer() {
    static PosixFileLayer layer;
    return layer;
}

} // namespace corvane::platform
