// Questions to the file system that only look: existence, kind, size, listings. They never write, follow
// links as stat() does, and what a failed look gives is said at each function. Thread-safe.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::platform {

enum class EntryKind { regularFile, directory, other };

struct DirectoryEntry {
    std::string name;
    // Of the link's target for a symbolic link; `other` when it can't be told.
    EntryKind kind = EntryKind::other;
};

// False also when the look fails, for instance where a folder above can't be entered.
bool fileExists(const std::string& path) noexcept;
bool isDirectory(const std::string& path) noexcept;
bool isRegularFile(const std::string& path) noexcept;
bool isExecutableFile(const std::string& path) noexcept;

// Size in bytes of a regular file; absent when there is none or it can't be told.
std::optional<std::int64_t> fileSize(const std::string& path) noexcept;

// Opens the file and reads one byte: true only when a byte came.
bool canReadAByte(const std::string& path) noexcept;

// The absolute path with all links resolved; absent when it leads nowhere or can't be followed.
std::optional<std::string> resolvedPath(const std::string& path);

enum class HiddenEntries { skip, include };

// The entries in ascending byte order of their names, without "." and "..". Hidden entries begin with a dot.
// Absent when the directory can't be opened or read to its end; `error` then gets the reason.
std::optional<std::vector<DirectoryEntry>> listDirectory(const std::string& path, HiddenEntries hidden,
                                                         std::string* error = nullptr);

// Calls `visit` for the name and the raw d_type of each entry but "." and "..", in the order of the disk and
// without a copy: for folders of tens of thousands of files. False when the directory can't be opened or read
// to its end.
bool visitDirectory(const std::string& path,
                    const std::function<void(std::string_view name, unsigned char dType)>& visit);

struct SizedFile {
    std::string path;
    std::optional<std::int64_t> size; // bytes; absent when it can't be told
};

// The regular files in a folder and in those `levelsBelow` it, without hidden entries; what stands in a
// folder in ascending byte order. A folder that can't be read to its end has none. The path is followed
// once: for tens of thousands of small folders.
std::vector<SizedFile> listFiles(const std::string& path, int levelsBelow);

// The whole content of a regular file; absent when it isn't one (a FIFO can't hang the call), can't be opened
// or read to its end, or is larger than `limit` bytes, which is looked at before anything is read. `error`
// then gets the reason.
std::optional<std::string> readFile(const std::string& path, std::int64_t limit = INT64_MAX,
                                    std::string* error = nullptr);

// At most `limit` bytes from the start of a regular file; absent as with readFile().
std::optional<std::string> readFilePrefix(const std::string& path, std::int64_t limit,
                                          std::string* error = nullptr);

} // namespace corvane::platform
