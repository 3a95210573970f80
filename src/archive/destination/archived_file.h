// What lies at the place where an archive's record says that its mail is.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "archive/destination/archive_folders.h"
#include "platform/files/layers/file_layer.h"
#include "platform/files/sha256.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archived/file_readings.h"

namespace corvane::archive {

struct ArchivedFile {
    enum class State {
        read,
        otherSize,    // it is there, and wasn't read: its size isn't its record's
        gone,         // surely not there, or at a path that an archive can't have
        couldNotLook, // it may be there: a failed look, or a file that a cloud provider keeps elsewhere
    };

    State state = State::couldNotLook;
    // Of one that was read.
    std::shared_ptr<const std::string> bytes;
    platform::Sha256Digest hash{};
    FileStamp stamp;
    WrittenFolder folder;
};

// Whether the errno of a failed look says that nothing of the archive is there.
bool saysGone(int error);

// Whether a path of an index may be written to: below the root, and that of a mail.
bool isPlaceOfMail(std::string_view relativePath);

// Reads the file past the cache, if it has this size. Blocks; `limit` is restarted before each step.
ArchivedFile readArchivedFile(platform::FileLayer& files, const ArchiveFolders& folders,
                              platform::JobLimit& limit, const std::string& relativePath,
                              std::int64_t sizeBytes);

} // namespace corvane::archive
