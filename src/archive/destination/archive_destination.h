// The archive folder of one run: everything that touches the destination goes through here, has a time limit
// and hears a stop, so that a place that stops answering, whichever call it hangs in, costs the run one limit
// a message and no more. All of it is reached from the descriptor of the root that was opened and locked at
// the start: when the root's path leads elsewhere, as after a disk was taken away, nothing is written any
// more. Used by one thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>

#include <sys/types.h>

#include "archive/destination/archive_folders.h"
#include "archive/destination/archived_file.h"
#include "archive/destination/destination_jobs.h"
#include "archive/destination/file_placement.h"
#include "archive/message_extraction.h"
#include "platform/files/layers/file_layer.h"
#include "platform/files/layers/layer_descriptor.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archive_files/archive_index_file.h"
#include "records/archived/archive_records.h"

namespace corvane::archive {

// Once a stop is requested, a step that hangs may still take this long, and a second more for each MiB.
inline constexpr std::chrono::nanoseconds graceAfterStop = std::chrono::seconds(3);

struct LoadedIndex {
    EmailArchiveIndex index;
    // The name in the root under which a damaged one is kept.
    std::optional<std::string> damagedKeptAs;
};

class ArchiveDestination {
  public:
    // `files` has to outlive every job that hung.
    ArchiveDestination(platform::FileLayer& files, std::string root, std::chrono::nanoseconds limit,
                       std::stop_token stop = {});
    ArchiveDestination(const ArchiveDestination&) = delete;
    ArchiveDestination& operator=(const ArchiveDestination&) = delete;
    ~ArchiveDestination();

    [[nodiscard]] const std::string& indexPath() const noexcept { return indexPath_; }

    // Makes the root with its missing parents. Throws ArchiveAccessError.
    void createRoot();

    // Opens the root, and keeps every other run, of any process, out of this archive until the destination
    // goes. To be called before everything below. Throws ArchiveAccessError while another one has it: two
    // runs would replace each other's index. A place whose file system knows no locks is used without one.
    void lock();

    // The index; where there is none, an empty one of this moment. A damaged one is kept aside first, and an
    // empty one begun. `bring` is asked to fetch an index that a cloud provider keeps elsewhere, and returns
    // whether that is on its way; then it is waited for. Throws ArchiveAccessError when nobody could look, or
    // the damaged one can't be kept: nothing was changed then.
    LoadedIndex loadIndex(Date now, const std::function<bool(const std::string& path)>& bring = {});

    // The index that is there. Throws ArchiveAccessError when there is none, it is damaged, or nobody could
    // look; nothing is changed.
    EmailArchiveIndex existingIndex();

    // What lies at the path of a record; couldNotLook also when the place hangs.
    ArchivedFile readArchived(const std::string& relativePath, std::int64_t sizeBytes);

    // Writes one file durably and reads it back; the write with its flush has the limit, and so has each
    // other step. Throws ArchiveError: writeTimedOut when a step hangs. What hung may still finish the file
    // later: it then holds the bytes or a part of them, and the next run finds it. Throws ArchiveAccessError
    // when the root has gone.
    PlacedFile writePOSIX(const MessageBytes& message, const std::string& relativePath);

    // Flushes the folders of all written files and the root, so that the index never names a file that a
    // power loss could take. Returns the folders that aren't where they were written into: what was written
    // into them isn't in the archive.
    std::set<WrittenFolder> syncFolders();

    // Replaces the index in one step. One that isn't the loaded one any more is read again and merged, which
    // changes `index`. Throws ArchiveAccessError, with the old one in place, also when the root has gone or
    // the one that came meanwhile can't be read.
    void saveIndex(EmailArchiveIndex& index, const std::function<void(const std::string&)>& markHidden);

    // Replaces the index that was loaded; `before` is called when the new one lies ready. False where the old
    // one stays: it isn't the loaded one any more, or `before` refused. Throws ArchiveAccessError, with the
    // old one in place.
    bool replaceIndex(const EmailArchiveIndex& index,
                      const std::function<void(const std::string&)>& markHidden, BeforeReplacing before);

    // Flushes the root and the folders above it as far as they are new, after the index.
    void syncRoot();

  private:
    bool runLimited(std::chrono::nanoseconds limit,
                    std::function<void(platform::FileLayer&, platform::JobLimit&)> job,
                    std::chrono::nanoseconds grace = graceAfterStop);
    std::shared_ptr<ArchiveFolders> folders();
    ArchiveIndexReading readIndex();
    ArchiveIndexReading broughtIndex(const std::function<bool(const std::string&)>& bring);
    std::string keepDamagedIndex(Date now);
    void mergeChangedIndex(EmailArchiveIndex& index);
    [[noreturn]] void failUnsaved(int error) const;

    platform::FileLayer& files_;
    std::string rootPath_;
    std::string indexPath_;
    std::chrono::nanoseconds limit_;
    std::stop_token stop_;
    mode_t rootMode_ = 0; // of the opened root; others may do with the archive what it permits
    bool hasAskedForCache_ = false;
    int hungAfterStop_ = 0;
    platform::TimeLimitedWorker worker_;
    std::shared_ptr<platform::LayerDescriptor> lock_;
    // A second descriptor of the locked root, for the jobs: one that hangs keeps it, but not the lock.
    std::shared_ptr<const platform::LayerDescriptor> opened_;
    std::shared_ptr<ArchiveFolders> folders_; // of the jobs, given up with one that hung
    std::optional<ArchiveIndexStamp> loadedStamp_;
    std::set<WrittenFolder> touchedFolders_;
    std::set<std::string> foldersAbove_; // in which something was made on the way to the root
};

} // namespace corvane::archive
