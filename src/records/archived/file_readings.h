// What reading a file has shown: the facts from which a message is proven to be archived. A fact holds as
// long as the file has the size and the times that it had when it was read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <sys/stat.h>

#include "platform/files/file_look.h"
#include "platform/files/sha256.h"
#include "records/values.h"

namespace corvane {

struct FileStamp {
    std::int64_t sizeBytes = 0;
    std::int64_t modifiedNanoseconds = 0; // since 1970
    // Since 1970. Whoever alters a file can give it its old modification time again, and not this one.
    // Negative in what was read before it was kept, which no file has.
    std::int64_t changedNanoseconds = 0;

    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

// The stamp of a file that is there while its size and times can't be had. A reading that failed for it holds
// as long as that stays so.
inline constexpr FileStamp unknownStamp{-1, -1, -1};

FileStamp stampOf(const struct stat& status) noexcept;

// `unknownStamp` unless it is there.
FileStamp stampOf(const platform::FileLook& look) noexcept;

struct FileReading {
    enum class Outcome {
        complete,
        incomplete, // an .emlx that is shorter than its count, or holds no byte of a message
        unreadable, // it is there, and can't be read or cut
        gone,       // an archived file that isn't there, or not with its record's size
    };

    FileStamp stamp;
    Outcome outcome = Outcome::complete;
    // Of the message: of all bytes of an .eml, of those that a run cuts out of an .emlx. All zeros where the
    // file is unreadable or gone.
    platform::Sha256Digest hash{};
    // Of the message behind its header (archive::bodyStartIndex); absent where nobody needed it.
    std::optional<platform::Sha256Digest> bodyHash{};
    Date readAt{};

    friend bool operator==(const FileReading&, const FileReading&) = default;
};

// One .emlx file in Mail's store.
struct CopyReading {
    std::string path;
    FileReading reading;
};

// One .eml file of an archive, read past the cache.
struct ArchivedFileReading {
    std::string relativePath; // to the archive's root
    FileReading reading;
};

} // namespace corvane
