// Taking mail out of an archive: its files, then its records. While it is at work no run can write into the
// archive, and what another program has changed in the index meanwhile stays.
//
// Nothing goes before the new index lies ready beside the old one, so an index that can't be read or written
// costs no mail. The files go first: whatever ends the removal in between leaves records without a file,
// which the library shows as gone and which the next removal takes away.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/files/layers/file_layer.h"
#include "platform/threads/time_limited_worker.h"
#include "records/values.h"
#include "text/shared_text.h"

namespace corvane {

// A record as whoever wants it removed has seen it.
struct RecordToRemove {
    std::string id;
    std::string emlRelativePath;
};

struct ArchiveRemovalOptions {
    std::chrono::nanoseconds timeLimit = platform::placeLimit; // of each step
    std::function<void(const std::string& path)> markHidden{};
    // Grows with each file that was tried, so that others can see how far it is; may be null.
    std::shared_ptr<std::atomic<std::size_t>> triedFiles{};
};

struct ArchiveRemoval {
    struct Failure {
        std::string id;
        std::string reason; // for the user
        bool isRecordGone = false;
    };

    std::vector<std::string> removed;      // ids that the index has no more, their mail neither
    std::vector<std::string> removedPaths; // of files that aren't there any more
    // What stays, and records that named something else than a mail: those went, and no file with them.
    std::vector<Failure> failures;
    SharedTextSet recordedIDs; // that the index has now
};

// Each id is in the result once. Throws ArchiveAccessError where the archive or its index can't be used.
// After a stop what wasn't begun stays.
ArchiveRemoval removeFromArchive(platform::FileLayer& files, const std::string& root,
                                 const std::vector<RecordToRemove>& records,
                                 const ArchiveRemovalOptions& options, const std::stop_token& stop);

} // namespace corvane
