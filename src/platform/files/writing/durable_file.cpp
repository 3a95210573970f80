#include "platform/files/writing/durable_file.h"

#include <cerrno>
#include <utility>
#include <vector>

#include <fcntl.h>

#include "platform/files/file_descriptor.h"
#include "platform/files/writing/file_claim.h"
#include "platform/files/writing/temporary_file.h"
#include "platform/paths.h"

namespace corvane::platform {

namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 20;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

// A save that a signal interrupts isn't a failed save.
template <typename Call>
auto retried(const Call& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

std::error_code writeAll(FileLayer& files, int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written =
            retried([&] { return files.write(descriptor, content.data(), content.size()); });
        if (written < 0) return lastError();
        if (written == 0) return std::make_error_code(std::errc::io_error);
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

mode_t modeForReplacementOf(FileLayer& files, const std::string& path, mode_t most) {
    struct stat existing{};
    if (files.stat(path, existing) != 0 || !S_ISREG(existing.st_mode)) return most;
    return existing.st_mode & most;
}

// Some file systems have no way to sync a folder, and a folder may be writable without being readable.
bool isUnsupportedFolderSync(int number) {
    return number == EINVAL || number == ENOTSUP || number == EOPNOTSUPP || number == ENOSYS ||
           number == EACCES;
}

std::error_code syncFolderOf(FileLayer& files, const std::string& path) {
    const std::string_view parent = parentPath(path);
    const std::string folder(parent.empty() ? "." : parent);
    const int descriptor = retried([&] { return files.open(folder, O_RDONLY | O_DIRECTORY, 0); });
    if (descriptor < 0) return isUnsupportedFolderSync(errno) ? std::error_code() : lastError();
    std::error_code error;
    if (retried([&] { return files.sync(descriptor); }) != 0 && !isUnsupportedFolderSync(errno)) {
        error = lastError();
    }
    files.close(descriptor);
    return error;
}

// The temporary file of one save. It goes with its owner unless it took the target's place.
class Replacement {
  public:
    Replacement(FileLayer& files, const std::string& target, mode_t mode)
      : files_(files)
      , target_(target) {
        const mode_t permitted = modeForReplacementOf(files_, target_, mode);
        for (int tries = 0; tries < claimTries; ++tries) {
            leave();
            make(permitted);
            if (descriptor_ < 0 || claimFile(descriptor_) != FileClaim::refused) return;
        }
    }

    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    ~Replacement() { leave(); }

    // After the first error nothing more is written, and commit() returns that error.
    void append(std::string_view chunk) {
        if (!error_ && !chunk.empty()) error_ = writeAll(files_, descriptor_, chunk);
    }

    std::error_code commit() {
        if (!error_ && retried([&] { return files_.sync(descriptor_); }) != 0) error_ = lastError();
        // Another start would take a file that nobody claims for a remnant until it has its name.
        const FileDescriptor claim(descriptor_ < 0 ? -1 : ::fcntl(descriptor_, F_DUPFD_CLOEXEC, 0));
        if (!error_ && !closed()) error_ = lastError();
        if (!error_ && retried([&] { return files_.rename(temporary_, target_); }) != 0) error_ = lastError();
        if (error_) return error_;
        created_ = false;
        return syncFolderOf(files_, target_);
    }

  private:
    // O_EXCL with a fresh name: nobody can have laid a link there to lead the write elsewhere.
    void make(mode_t mode) {
        temporary_ = temporarySiblingPath(target_);
        descriptor_ =
            retried([&] { return files_.open(temporary_, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode); });
        if (descriptor_ < 0) error_ = lastError();
        created_ = descriptor_ >= 0;
    }

    void leave() {
        if (descriptor_ >= 0) files_.close(std::exchange(descriptor_, -1));
        if (std::exchange(created_, false)) files_.unlink(temporary_);
    }

    // The descriptor is gone after close(), whatever it says.
    bool closed() { return files_.close(std::exchange(descriptor_, -1)) == 0 || errno == EINTR; }

    FileLayer& files_;
    const std::string& target_;
    std::string temporary_;
    int descriptor_ = -1;
    bool created_ = false;
    std::error_code error_;
};

} // namespace

std::error_code writeFileAtomically(FileLayer& files, const std::string& path, std::string_view content,
                                    mode_t mode) {
    Replacement replacement(files, path, mode);
    replacement.append(content);
    return replacement.commit();
}

std::error_code writeFileAtomically(FileLayer& files, const std::string& path,
                                    const std::function<void(const ByteSink&)>& produce, mode_t mode) {
    Replacement replacement(files, path, mode);
    std::string buffer;
    buffer.reserve(chunkSize);
    produce([&](std::string_view chunk) {
        if (buffer.size() + chunk.size() > chunkSize) {
            replacement.append(buffer);
            buffer.clear();
        }
        if (chunk.size() >= chunkSize) {
            replacement.append(chunk);
        } else {
            buffer.append(chunk);
        }
    });
    replacement.append(buffer);
    return replacement.commit();
}

std::error_code writeNewFile(FileLayer& files, const std::string& path, std::string_view content) {
    const int descriptor =
        retried([&] { return files.open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, privateFileMode); });
    if (descriptor < 0) return lastError();
    std::error_code error = writeAll(files, descriptor, content);
    if (!error && retried([&] { return files.sync(descriptor); }) != 0) error = lastError();
    if (files.close(descriptor) != 0 && errno != EINTR && !error) error = lastError();
    if (!error) return syncFolderOf(files, path);
    files.unlink(path);
    return error;
}

std::error_code createDirectories(FileLayer& files, const std::string& path) {
    std::vector<std::string> missing;
    std::string current = path;
    struct stat status{};
    while (files.stat(current, status) != 0) {
        if (errno != ENOENT) return lastError();
        missing.push_back(current);
        current = parentPath(current);
        if (current.empty()) break;
        status = {};
    }
    if (!current.empty() && !S_ISDIR(status.st_mode)) return std::make_error_code(std::errc::not_a_directory);
    for (auto folder = missing.rbegin(); folder != missing.rend(); ++folder) {
        if (files.makeDirectory(*folder, privateFolderMode) == 0) continue;
        const std::error_code error = lastError();
        // Another process may have made it first.
        if (files.stat(*folder, status) != 0 || !S_ISDIR(status.st_mode)) return error;
    }
    return {};
}

std::string temporarySiblingPath(const std::string& path) {
    // Of fixed length: the target's own name may already be as long as a name can be.
    return joinPath(parentPath(path), ".corvane-" + randomUuid() + ".tmp");
}

} // namespace corvane::platform
