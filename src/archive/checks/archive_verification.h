// Re-reads a whole archive from the storage and compares it with its index. It sees lost, unreadable and
// changed files; of a record without a hash, as older versions wrote them, it sees a file with another size
// or of another message, and no single byte. Only reads, unless it is asked to record hashes; blocks, on a
// background thread. Memory grows with the index alone. A place that doesn't answer has
// `platform::placeLimit` a step.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/files/layers/file_layer.h"
#include "records/archived/file_readings.h"

namespace corvane {

// Paths are relative to the root: in the order of the index, those of no record sorted.
struct ArchiveVerification {
    std::int64_t checked = 0; // records
    std::int64_t bytes = 0;   // read back
    // No regular file below the root: also for a path that is absolute, leaves the root or is a link.
    std::vector<std::string> missing;
    std::vector<std::string> sizeMismatch;
    // Other bytes than the record's hash.
    std::vector<std::string> altered;
    // .eml files that no record names; hidden ones, and with them the "._" files of macOS, aren't mail.
    std::vector<std::string> unindexed;
    // The record contradicts itself or, where it has no hash, the file is another message's.
    std::vector<std::string> identityMismatch;
    // Paths, or one file under two spellings, named by more than one record.
    std::vector<std::string> duplicatePaths;
    // Files and folders that are there and couldn't be read: their content is unknown.
    std::vector<std::string> unreadable;
    std::int64_t unchecked = 0; // files that were read and have no hash in the index
    std::int64_t recorded = 0;  // hashes that were added to the index
    bool wasCancelled = false;

    [[nodiscard]] bool isClean() const;
};

// Asks for hashes in records that have none: those of files with the recorded size that hold no other message
// and were read twice with the same bytes. The archive is locked, and its index replaced in one step at the
// end; a stop before leaves it as it was.
struct HashRecording {
    std::function<void(const std::string&)> markHidden; // empty: no file is hidden
};

// Gets the numbers of records checked and of all.
using VerificationProgress = std::function<void(std::size_t, std::size_t)>;

// Gets a reading for each record that was checked, a failed one also for a file that isn't there: what was
// known of that file holds no longer.
using ReadingsKeeper = std::function<void(std::vector<ArchivedFileReading>)>;

// A stop ends it at once. `keepReadings` is called once, whatever the end. Throws ArchiveAccessError when
// there is no index, it can't be used or saved, the place doesn't answer, or somebody else has the lock.
ArchiveVerification verifyArchive(const std::string& root, const VerificationProgress& progress = {},
                                  const std::stop_token& stop = {},
                                  platform::FileLayer& files = platform::posixFileLayer(),
                                  const std::optional<HashRecording>& recording = std::nullopt,
                                  const ReadingsKeeper& keepReadings = {});

} // namespace corvane
