// Whether what is said of archived files can rest on a look at all of them. Any thread.
#pragma once

#include <vector>

#include "locations/loading/archived_files.h"
#include "records/archived/archive_records.h"

namespace corvane {

// Every archive was looked at, and none has files of which only a placeholder is here.
bool areAllFilesHere(const ArchivedFiles& files, const std::vector<ArchiveLocation>& locations);

} // namespace corvane
