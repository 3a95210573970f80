#include "platform/files/layers/file_layer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "platform/files/layers/transfer_limit.h"
#include "platform/files/nameable_path.h"
#include "platform/files/writing/storage_flush.h"

namespace corvane::platform {

namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};

// By a descriptor of its own, which reads from the first entry on and is closed with the stream.
std::unique_ptr<DIR, CloseDirectory> streamOf(int folder) {
    const int descriptor = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    std::unique_ptr<DIR, CloseDirectory> stream(::fdopendir(descriptor));
    if (!stream) ::close(descriptor);
    return stream;
}

class PosixFileLayer final : public FileLayer {
  public:
    int open(const std::string& path, int flags, mode_t mode) override {
        return isNameable(path) ? ::open(path.c_str(), flags | O_CLOEXEC, mode) : -1;
    }

    ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
        return ::write(descriptor, bytes, std::min(count, mostBytesPerCall));
    }

    ssize_t read(int descriptor, void* bytes, std::size_t count) override {
        return ::read(descriptor, bytes, std::min(count, mostBytesPerCall));
    }

    int close(int descriptor) override { return ::close(descriptor); }

    int sync(int descriptor) override { return ::fsync(descriptor); }

    int fullSync(int descriptor) override { return flushToMedium(descriptor); }

    void bypassCache(int descriptor) override { dropCachedPages(descriptor); }

    int statOpen(int descriptor, struct stat& result) override { return ::fstat(descriptor, &result); }

    int lock(int descriptor) override { return ::flock(descriptor, LOCK_EX | LOCK_NB); }

    int list(int folder, const EntryVisitor& visit) override {
        const auto stream = streamOf(folder);
        if (!stream) return -1;
        while (true) {
            errno = 0;
            const dirent* entry = ::readdir(stream.get());
            if (entry == nullptr) return errno == 0 ? 0 : -1;
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") visit(name, entry->d_type);
        }
    }

    int openAt(int folder, const std::string& name, int flags, mode_t mode) override {
        return isNameable(name) ? ::openat(folder, name.c_str(), flags | O_CLOEXEC, mode) : -1;
    }

    int statAt(int folder, const std::string& name, struct stat& result) override {
        return isNameable(name) ? ::fstatat(folder, name.c_str(), &result, AT_SYMLINK_NOFOLLOW) : -1;
    }

    int makeDirectoryAt(int folder, const std::string& name, mode_t mode) override {
        return isNameable(name) ? ::mkdirat(folder, name.c_str(), mode) : -1;
    }

    int renameAt(int folder, const std::string& from, const std::string& to) override {
        return isNameable(from) && isNameable(to) ? ::renameat(folder, from.c_str(), folder, to.c_str()) : -1;
    }

    int unlinkAt(int folder, const std::string& name) override {
        return isNameable(name) ? ::unlinkat(folder, name.c_str(), 0) : -1;
    }

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
