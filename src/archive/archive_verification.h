// Re-reads a whole archive from the storage and compares it with its index. It sees lost, cut, grown,
// unreadable and swapped files; it can't see a changed byte that leaves size and Message-ID as they are,
// since an index holds no checksums. Only reads; blocks, on a background thread. Memory grows with the index
// alone.
#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/files/file_layer.h"

namespace corvane {

// Paths are relative to the root: in the order of the index, those of no record sorted.
struct ArchiveVerification {
    std::int64_t checked = 0; // records
    std::int64_t bytes = 0;   // read back
    // No regular file below the root: also for a path that is absolute, leaves the root or is a link.
    std::vector<std::string> missing;
    std::vector<std::string> sizeMismatch;
    // .eml files that no record names; hidden ones, and with them the "._" files of macOS, aren't mail.
    std::vector<std::string> unindexed;
    // The file holds another message than its record says, or the record contradicts itself.
    std::vector<std::string> identityMismatch;
    // Paths, or one file under two spellings, named by more than one record.
    std::vector<std::string> duplicatePaths;
    // Files and folders that are there and couldn't be read: their content is unknown.
    std::vector<std::string> unreadable;
    bool wasCancelled = false;

    [[nodiscard]] bool isClean() const;
};

// `progress` gets the numbers of records checked and of all. A stop is looked at between files. Throws
// ArchiveAccessError when there is no index or it can't be used.
ArchiveVerification verifyArchive(const std::string& root,
                                  const std::function<void(std::size_t, std::size_t)>& progress = {},
                                  const std::stop_token& stop = {},
                                  platform::FileLayer& files = platform::posixFileLayer());

} // namespace corvane
