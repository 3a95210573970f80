// What archives that a load has read look like now: whether they are there, and which of their files are.
// Background work; reads no index and no mail. A place that doesn't answer costs its limit.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "locations/loading/archive_index_cache.h"
#include "locations/loading/archived_files.h"
#include "platform/platform.h"
#include "records/archived/archive_records.h"
#include "records/stores/app_support.h"

namespace corvane {

struct ArchiveLooksInput {
    std::vector<std::string> roots;
    SharedEntryList entries;   // of these archives; never null
    IndexStates indexes;       // of which the entries are
    SharedArchivedFiles files; // as they were seen last; null where no load has looked at them: nor does this
};

struct ArchiveLooks {
    std::map<std::string, bool> connected; // and holding files, by root
    SharedEntryList entries;
    SharedArchivedFiles files;    // of these entries; those of the input where nothing has changed
    bool areIndexesOther = false; // a load would find other entries
};

// Absent after a stop.
std::optional<ArchiveLooks> lookAtArchives(const platform::Platform& platform,
                                           const CorvaneAppSupport& support, const ArchiveLooksInput& input,
                                           const std::stop_token& stop);

// Of the index in that archive; absent when nobody can look.
std::optional<SourceStamp> archiveIndexStamp(platform::FileLayer& files, const std::string& root);

// The files of an archive that is connected, by their paths in records; none of an archive whose folder has
// gone from a disk that is there. Null where nobody can tell.
std::shared_ptr<const RootFiles> archivedFilesAt(PlaceLook& look, const ArchiveIndexCache& cache,
                                                 const std::string& root,
                                                 const std::vector<SharedText>& paths, bool isConnected);

} // namespace corvane
