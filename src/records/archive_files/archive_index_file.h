// The form of "archive-index.json", the list of what one archive folder holds.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/file_identity.h"
#include "platform/files/layers/file_layer.h"
#include "records/archived/archive_records.h"
#include "records/archived/file_readings.h"

namespace corvane {

inline constexpr std::string_view archiveIndexFileName = "archive-index.json";

// Absent when the file is missing, can't be read or doesn't decode. The content is from outside: ids and
// paths in it are untrusted.
std::optional<EmailArchiveIndex> readArchiveIndex(const std::string& path);

// Which state of an index was read: one that was replaced or changed since then is another one.
struct ArchiveIndexStamp {
    platform::FileIdentity file;
    FileStamp stamp;

    static ArchiveIndexStamp of(const struct stat& status);

    friend bool operator==(const ArchiveIndexStamp&, const ArchiveIndexStamp&) = default;
};

struct ArchiveIndexReading {
    enum class State {
        usable,
        absent,       // the folder answered, and there is none
        damaged,      // it was read to its end, and is no index
        couldNotLook, // nobody knows what it holds
    };

    State state = State::couldNotLook;
    EmailArchiveIndex index;                // of a usable one, else empty
    std::optional<ArchiveIndexStamp> stamp; // of a usable or damaged one
    int error = 0;                          // why nobody could look, as errno
    // A cloud provider has it elsewhere, and only its placeholder is here.
    bool isInCloud = false;
};

// Reads the index at this path, which may be relative to the folder of a platform::FolderFileLayer; a link at
// its end isn't followed. One of more than `largestArchiveIndexBytes` isn't read (EFBIG). `onProgress` is
// called before each piece. Never throws for what it finds.
ArchiveIndexReading readArchiveIndexFile(platform::FileLayer& files, const std::string& path,
                                         const std::function<void()>& onProgress = {});

std::optional<EmailArchiveIndex> decodeArchiveIndex(std::string_view json);

// Indented, keys sorted, slashes as they are.
std::string encodeArchiveIndex(const EmailArchiveIndex& index);

} // namespace corvane
