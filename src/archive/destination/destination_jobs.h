// What ArchiveDestination does in the jobs of its worker. Each owns all that it touches, since one that hangs
// outlives its caller. Block; tell their outcome by their fields.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include <sys/types.h>

#include "archive/archive_error.h"
#include "archive/destination/archive_folders.h"
#include "archive/destination/file_placement.h"
#include "archive/message_extraction.h"
#include "platform/files/layers/file_layer.h"
#include "platform/files/layers/layer_descriptor.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archive_files/archive_index_file.h"

namespace corvane::archive {

// Makes the root with its missing parents.
struct RootMaking {
    std::string root;
    std::set<std::string> foldersAbove{}; // in which something was made, and the root's own
    int error = 0;

    void run(platform::FileLayer& files);
};

// Opens the root twice: one descriptor has the lock, the other one is for the jobs. Removes what killed runs
// were writing there.
struct RootLocking {
    std::string root;
    std::shared_ptr<platform::LayerDescriptor> lock{};
    std::shared_ptr<platform::LayerDescriptor> opened{};
    mode_t mode = 0; // of the root
    int error = 0;
    bool isTaken = false; // by another run

    // The descriptors belong to `owner`, which outlives the job's own layer.
    void run(platform::FileLayer& files, platform::FileLayer& owner);
};

// Gives the damaged index a name that nothing has.
struct IndexKeeping {
    std::shared_ptr<ArchiveFolders> folders;
    std::string stamp; // for the name
    std::string name{};
    int error = 0;

    void run(platform::FileLayer& files);
};

struct FilePlacing {
    std::shared_ptr<ArchiveFolders> folders;
    MessageBytes message;
    std::string relativePath;
    bool asksForCache = false;
    PlacedFile placed{};
    std::optional<ArchiveError> error{};
    bool hasRootGone = false;
    bool staysInCache = false; // where it was asked for

    void run(platform::FileLayer& files, platform::JobLimit& limit);
};

// Flushes the folders that were written into, and all above them up to the root.
struct FolderSyncing {
    std::shared_ptr<ArchiveFolders> folders;
    std::set<WrittenFolder> touched;
    std::set<WrittenFolder> lost{}; // not where they were, or not to be forced to the storage
    int error = 0;                  // of the root

    void run(platform::FileLayer& files, platform::JobLimit& limit);
};

// What is done when a new index lies ready and the old one is still the loaded one: files that the new one
// doesn't name may go then. An errno other than 0 leaves the old index in place. May be called again.
using BeforeReplacing = std::function<int(platform::FileLayer&, const ArchiveFolders&, platform::JobLimit&)>;

// Replaces the index, unless it is another one than the loaded one right before that.
struct IndexReplacing {
    std::shared_ptr<ArchiveFolders> folders;
    std::string indexPath;
    std::string content;
    std::optional<ArchiveIndexStamp> loaded; // absent: there was none
    std::function<void(const std::string&)> markHidden;
    BeforeReplacing before{};
    int error = 0;
    bool hasChanged = false;

    void run(platform::FileLayer& files, platform::JobLimit& limit);
};

} // namespace corvane::archive
