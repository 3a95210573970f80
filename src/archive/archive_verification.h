// Re-reads a whole archive from the disk and compares it with its index. Blocking and long; memory doesn't
// grow with the messages' sizes. Nothing is changed. It sees what is missing, cut, grown, another message or
// not listed; the index holds no checksum, so a flipped bit inside a body of the right size is beyond it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvane {

// Lists of paths relative to the root, as the index or the disk spells them.
struct ArchiveVerification {
    std::int64_t checked = 0;                  // records
    std::int64_t bytes = 0;                    // read from the disk
    std::vector<std::string> missing;          // no such file, or a path that no archive writes
    std::vector<std::string> sizeMismatch;     // another size, or not readable to its end
    std::vector<std::string> unindexed;        // mail files that no record names
    std::vector<std::string> identityMismatch; // the file's Message-ID is another one than the record's
    std::vector<std::string> duplicatePaths;   // named by more than one record
};

// Throws std::runtime_error with the user's text when there is no readable index.
ArchiveVerification verifyArchive(const std::string& root);

} // namespace corvane
