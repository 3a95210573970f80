#include "platform/files/directory.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/file_descriptor.h"
#include "platform/files/layers/transfer_limit.h"
#include "platform/files/nameable_path.h"
#include "platform/paths.h"

namespace corvane::platform {

namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};

using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

bool statOf(const std::string& path, struct stat& result) noexcept {
    return isNameable(path) && ::stat(path.c_str(), &result) == 0;
}

// O_NONBLOCK: the open of a FIFO without a writer must not hang; it has no effect on regular files.
FileDescriptor openToRead(const std::string& path) noexcept {
    if (!isNameable(path)) return {};
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    } while (descriptor < 0 && errno == EINTR);
    return FileDescriptor(descriptor);
}

ssize_t readSome(int descriptor, char* bytes, std::size_t count) noexcept {
    ssize_t got = 0;
    do {
        got = ::read(descriptor, bytes, std::min(count, mostBytesPerCall));
    } while (got < 0 && errno == EINTR);
    return got;
}

void setReason(std::string* error, int number) {
    if (error != nullptr) *error = std::generic_category().message(number);
}

bool isDotOrDotDot(std::string_view name) noexcept {
    return name == "." || name == "..";
}

EntryKind kindOfMode(mode_t mode) noexcept {
    if (S_ISREG(mode)) return EntryKind::regularFile;
    if (S_ISDIR(mode)) return EntryKind::directory;
    return EntryKind::other;
}

EntryKind kindOfEntry(int directory, const dirent& entry) noexcept {
    if (entry.d_type == DT_REG) return EntryKind::regularFile;
    if (entry.d_type == DT_DIR) return EntryKind::directory;
    struct stat target{};
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return EntryKind::other;
    if (::fstatat(directory, entry.d_name, &target, 0) != 0) return EntryKind::other;
    return kindOfMode(target.st_mode);
}

// Calls `visit` for each entry but "." and ".."; 0, or the errno of the failure.
template <typename Visit>
int forEachEntry(DIR* stream, const Visit& visit) {
    const int descriptor = ::dirfd(stream);
    while (true) {
        errno = 0;
        const dirent* entry = ::readdir(stream);
        if (entry == nullptr) return errno;
        if (!isDotOrDotDot(entry->d_name)) visit(descriptor, *entry);
    }
}

// Null and errno when it can't be opened.
DirectoryStream openFolder(const std::string& path) {
    return DirectoryStream(isNameable(path) ? ::opendir(path.c_str()) : nullptr);
}

DirectoryStream openFolder(int above, const char* name) {
    const int descriptor = ::openat(above, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK);
    DirectoryStream stream(descriptor < 0 ? nullptr : ::fdopendir(descriptor));
    if (!stream && descriptor >= 0) ::close(descriptor);
    return stream;
}

// Ascending by name; 0, or the errno of the failure.
int collectEntries(DIR* folder, HiddenEntries hidden, std::vector<DirectoryEntry>& entries) {
    const int number = forEachEntry(folder, [&](int descriptor, const dirent& entry) {
        if (hidden == HiddenEntries::skip && entry.d_name[0] == '.') return;
        entries.push_back({entry.d_name, kindOfEntry(descriptor, entry)});
    });
    std::ranges::sort(entries, {}, &DirectoryEntry::name);
    return number;
}

void addFiles(DIR* folder, const std::string& path, int levelsBelow, std::vector<SizedFile>& files) {
    const int descriptor = ::dirfd(folder);
    std::vector<DirectoryEntry> entries;
    if (collectEntries(folder, HiddenEntries::skip, entries) != 0) return;
    for (const auto& [name, kind] : entries) {
        if (kind == EntryKind::regularFile) {
            struct stat status{};
            const bool isThere =
                ::fstatat(descriptor, name.c_str(), &status, 0) == 0 && S_ISREG(status.st_mode);
            files.push_back({joinPath(path, name), isThere ? std::optional(status.st_size) : std::nullopt});
        }
        if (kind != EntryKind::directory || levelsBelow == 0) continue;
        if (const auto below = openFolder(descriptor, name.c_str()))
            addFiles(below.get(), joinPath(path, name), levelsBelow - 1, files);
    }
}

// Grows the text by what comes, up to `limit` bytes in all; 0 at the end of the file or the limit.
int readUpTo(int descriptor, std::string& content, std::size_t expected, std::size_t limit) {
    // One byte more than expected, so that the end of an unchanged file is found without another growth.
    std::size_t room = std::min(expected, limit - 1) + 1;
    while (content.size() < limit) {
        const std::size_t filled = content.size();
        ssize_t got = 0;
        // The library of GCC 12 offers the whole capacity, which may be more than was asked for.
        content.resize_and_overwrite(room, [&](char* bytes, std::size_t) {
            got = readSome(descriptor, bytes + filled, room - filled);
            return filled + static_cast<std::size_t>(std::max<ssize_t>(got, 0));
        });
        if (got < 0) return errno;
        if (got == 0) return 0;
        if (content.size() == room) room = std::min(limit, room + std::max<std::size_t>(room / 2, 65'536));
    }
    return 0;
}

// Opens a regular file. An invalid descriptor and errno otherwise.
FileDescriptor openRegularFile(const std::string& path, std::int64_t& size) noexcept {
    FileDescriptor file = openToRead(path);
    struct stat status{};
    if (!file || ::fstat(file.get(), &status) != 0) return {};
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return {};
    }
    size = status.st_size;
    return file;
}

std::optional<std::string> contentOf(int descriptor, std::size_t expected, std::size_t limit,
                                     std::string* error) {
    std::string content;
    int number = 0;
    try {
        if (limit > 0) number = readUpTo(descriptor, content, expected, limit);
    } catch (const std::bad_alloc&) {
        number = ENOMEM;
    } catch (const std::length_error&) {
        number = EFBIG;
    }
    if (number == 0) return content;
    setReason(error, number);
    return std::nullopt;
}

} // namespace

bool fileExists(const std::string& path) noexcept {
    struct stat status{};
    return statOf(path, status);
}

bool isDirectory(const std::string& path) noexcept {
    struct stat status{};
    return statOf(path, status) && S_ISDIR(status.st_mode);
}

bool isRegularFile(const std::string& path) noexcept {
    struct stat status{};
    return statOf(path, status) && S_ISREG(status.st_mode);
}

bool isExecutableFile(const std::string& path) noexcept {
    return isRegularFile(path) && ::access(path.c_str(), X_OK) == 0;
}

std::optional<std::int64_t> fileSize(const std::string& path) noexcept {
    struct stat status{};
    if (!statOf(path, status) || !S_ISREG(status.st_mode)) return std::nullopt;
    return status.st_size;
}

bool canReadAByte(const std::string& path) noexcept {
    const FileDescriptor file = openToRead(path);
    char byte = 0;
    return file && readSome(file.get(), &byte, 1) == 1;
}

std::optional<std::string> resolvedPath(const std::string& path) {
    if (!isNameable(path)) return std::nullopt;
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
    if (!resolved) return std::nullopt;
    return resolved.get();
}

std::optional<std::vector<DirectoryEntry>> listDirectory(const std::string& path, HiddenEntries hidden,
                                                         std::string* error) {
    std::vector<DirectoryEntry> entries;
    const DirectoryStream folder = openFolder(path);
    const int number = folder ? collectEntries(folder.get(), hidden, entries) : errno;
    if (number == 0) return entries;
    setReason(error, number);
    return std::nullopt;
}

bool visitDirectory(const std::string& path,
                    const std::function<void(std::string_view name, unsigned char dType)>& visit) {
    const DirectoryStream folder = openFolder(path);
    return folder && forEachEntry(folder.get(),
                                  [&](int, const dirent& entry) { visit(entry.d_name, entry.d_type); }) == 0;
}

std::vector<SizedFile> listFiles(const std::string& path, int levelsBelow) {
    std::vector<SizedFile> files;
    if (const DirectoryStream folder = openFolder(path)) addFiles(folder.get(), path, levelsBelow, files);
    return files;
}

std::optional<std::string> readFile(const std::string& path, std::int64_t limit, std::string* error) {
    std::int64_t size = 0;
    const FileDescriptor file = openRegularFile(path, size);
    if (!file || size > limit) {
        setReason(error, file ? EFBIG : errno);
        return std::nullopt;
    }
    // One byte above the limit shows a file that grew past it meanwhile.
    const std::size_t most = limit == INT64_MAX ? INT64_MAX : static_cast<std::size_t>(limit) + 1;
    auto content = contentOf(file.get(), static_cast<std::size_t>(size), most, error);
    if (content && content->size() > static_cast<std::size_t>(limit)) {
        setReason(error, EFBIG);
        return std::nullopt;
    }
    return content;
}

std::optional<std::string> readFilePrefix(const std::string& path, std::int64_t limit, std::string* error) {
    std::int64_t size = 0;
    const FileDescriptor file = openRegularFile(path, size);
    if (!file) {
        setReason(error, errno);
        return std::nullopt;
    }
    return contentOf(file.get(), static_cast<std::size_t>(size), static_cast<std::size_t>(limit), error);
}

} // namespace corvane::platform
