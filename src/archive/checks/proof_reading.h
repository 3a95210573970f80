// Reads one file for the proof that a message is archived, and nothing else of it: a copy in Mail's store, or
// a file of an archive past the cache. Only reads; blocks, on a background thread.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "archive/archive_root.h"
#include "platform/files/layers/file_layer.h"
#include "records/archived/file_readings.h"

namespace corvane::archive {

// Whether bytes with this hash can only be compared by their body, which costs a second hash.
using BodyHashNeed = std::function<bool(const platform::Sha256Digest&)>;

// The message in an .emlx file, cut as a run cuts it. Absent when nothing is there, or when the file changed
// while it was read. A file that can't even be looked at is unreadable, with the size and time -1.
std::optional<FileReading> readCopy(const std::string& path, const BodyHashNeed& needsBodyHash);

// Reads files of one archive; one thread.
class ArchivedFileReader {
  public:
    // `files` has to outlive the reader.
    ArchivedFileReader(platform::FileLayer& files, std::string root);

    // Absent as above, for a path that leads out of the archive or through a link, and for a file of which a
    // cloud provider has the content. `onProgress` is called before each piece.
    std::optional<FileReading> read(std::string_view relativePath, const BodyHashNeed& needsBodyHash,
                                    const std::function<void()>& onProgress = {});

  private:
    bool holdsFolder(const std::string& folder);
    std::optional<std::string> content(const std::string& path, const std::function<void()>& onProgress);

    platform::FileLayer& files_;
    ArchiveRoot root_;
    std::string heldFolder_; // the last one that was found to lie in the archive
};

} // namespace corvane::archive
