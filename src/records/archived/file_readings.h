// What reading a file has shown: the facts from which a message is proven to be archived. A fact holds as
// long as the file has the size and the modification time that it had when it was read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/files/sha256.h"
#include "records/values.h"

namespace corvane {

struct FileStamp {
    std::int64_t sizeBytes = 0;
    std::int64_t modifiedNanoseconds = 0; // since 1970

    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

struct FileReading {
    enum class Outcome {
        complete,
        incomplete, // an .emlx that is shorter than its count, or holds no byte of a message
        unreadable, // it is there, and can't be read or cut
    };

    FileStamp stamp;
    Outcome outcome = Outcome::complete;
    // Of the message: of all bytes of an .eml, of those that a run cuts out of an .emlx. All zeros where the
    // file is unreadable.
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
