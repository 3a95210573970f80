#include "platform/files/writing/private_files.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

#include "platform/files/file_descriptor.h"
#include "platform/files/nameable_path.h"
#include "platform/files/writing/durable_file.h"
#include "text/mutex.h"

namespace corvane::platform {

namespace {

constexpr mode_t ofOthers = S_IRWXG | S_IRWXO;

bool isOpenToOthers(const struct stat& status) noexcept {
    return status.st_uid == ::geteuid() && (status.st_mode & ofOthers) != 0;
}

void narrowContent(const std::string& folder) {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (!entry->is_symlink(ignored)) narrowToOwner(entry->path().string());
    }
}

} // namespace

std::error_code makePrivateFolder(FileLayer& files, const std::string& path) {
    if (const auto error = createDirectories(files, path)) return error;
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0 || !isOpenToOthers(status)) return {};
    narrowToOwner(path);
    // A file system without modes can't be narrowed, and isn't gone through at every use.
    if (::stat(path.c_str(), &status) == 0 && !isOpenToOthers(status)) narrowContent(path);
    return {};
}

// A lock of SQLite goes when its process closes any descriptor of the file. So one that is there isn't
// opened, and no second thread looks at one that is being made.
void makePrivateFile(const std::string& path) noexcept {
    if (!isNameable(path)) return;
    static text::Mutex mutex;
    {
        const text::MutexLock lock(mutex);
        const FileDescriptor made(
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, privateFileMode));
        if (made) return;
    }
    narrowToOwner(path);
}

bool makeOwnFolder(const std::string& path) noexcept {
    if (!isNameable(path) || (::mkdir(path.c_str(), privateFolderMode) != 0 && errno != EEXIST)) return false;
    struct stat status{};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != ::geteuid())
        return false;
    return !isOpenToOthers(status) || ::chmod(path.c_str(), privateFolderMode) == 0;
}

void narrowToOwner(const std::string& path) noexcept {
    struct stat status{};
    if (!isNameable(path) || ::stat(path.c_str(), &status) != 0 || !isOpenToOthers(status)) return;
    ::chmod(path.c_str(), status.st_mode & 07777 & ~ofOthers);
}

} // namespace corvane::platform
