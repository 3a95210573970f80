// Which of the files that archives name are there, as the folders of connected archives answered. An index is
// from outside: a path in it that isn't safe counts as a missing file and is never looked at. A file that
// can't be looked at isn't gone: only a place that answered can say so.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/files/layers/file_layer.h"
#include "records/archived/archive_records.h"
#include "records/archived/file_readings.h"
#include "text/shared_text.h"

namespace corvane {

class PlaceLook;

enum class FilePresence { present, absent, unknown };

// `unknown` when the look fails for another reason than a missing file or folder.
FilePresence filePresence(platform::FileLayer& files, const std::string& path);

// Surely not there, not even as a cloud provider's placeholder.
bool isArchiveFileGone(platform::FileLayer& files, const std::string& path);

enum class ArchivedFilePresence {
    there,
    inCloud, // only its placeholder is there
    gone,
    unknown, // its archive isn't connected, or couldn't be looked at
};

// The files of one archive. What is in none of the three is gone. Paths are as the records spell them.
struct RootFiles {
    std::unordered_map<SharedText, FileStamp, TextHash, TextEqual> there;
    SharedTextSet inCloud;
    SharedTextSet unknown;

    [[nodiscard]] ArchivedFilePresence presence(std::string_view relativePath) const;

    [[nodiscard]] bool areAllGone() const { return there.empty() && inCloud.empty() && unknown.empty(); }

    friend bool operator==(const RootFiles&, const RootFiles&) = default;
};

// The files of all archives that could be looked at, by their roots; one whose folder is gone from a disk
// that is there has none. Immutable, shared between threads.
struct ArchivedFiles {
    std::map<std::string, std::shared_ptr<const RootFiles>, std::less<>> byRoot;

    [[nodiscard]] ArchivedFilePresence presence(std::string_view root, std::string_view relativePath) const;

    // Null unless the file is there; valid as long as this.
    [[nodiscard]] const FileStamp* stamp(std::string_view root, std::string_view relativePath) const;
};

// Files that are known to be gone, by the roots of their archives.
using GonePaths = std::map<std::string, std::vector<SharedText>>;

using SharedArchivedFiles = std::shared_ptr<const ArchivedFiles>;

bool hasFilesInCloud(const ArchivedFiles& files);

// By their paths in records. Lists each folder that they name once.
RootFiles listArchivedFiles(PlaceLook& look, const std::vector<SharedText>& paths, const std::string& root);

// All files of an archive that has records are known to be gone.
bool allArchivedEmlGone(const RootFiles& files, const EmailArchiveIndex& index);

// The root is there and holds none of the files of its entries. False for a root without entries.
bool archiveLocationContentMissing(platform::FileLayer& files, const std::vector<ArchivedEntry>& entries,
                                   const std::string& rootPath);

// `earlier` where it says the same, so that a comparison of pointers tells that nothing follows.
SharedArchivedFiles publishedFiles(ArchivedFiles files, const SharedArchivedFiles& earlier);

} // namespace corvane
