// Whether the files of an archive are still where its index says. An index is from outside: a path in it that
// isn't safe counts as a missing file and is never looked at. A file that can't be looked at isn't gone: only
// a place that answered can say so.
#pragma once

#include <stop_token>
#include <string>
#include <vector>

#include "platform/files/file_layer.h"
#include "records/archive_records.h"

namespace corvane {

enum class FilePresence { present, absent, unknown };

// `unknown` when the look fails for another reason than a missing file or folder.
FilePresence filePresence(platform::FileLayer& files, const std::string& path);

// Neither the file nor its placeholder is there.
bool isArchiveFileGone(platform::FileLayer& files, const std::string& path);

// All files of an archive that has records are gone. Ends at the first that isn't; false after a stop.
bool allArchivedEmlGone(platform::FileLayer& files, const EmailArchiveIndex& index,
                        const std::string& archiveRoot, const std::stop_token& stop);

// The root is there and holds none of the files of its entries. False for a root without entries.
bool archiveLocationContentMissing(platform::FileLayer& files, const std::vector<ArchivedEntry>& entries,
                                   const std::string& rootPath);

} // namespace corvane
