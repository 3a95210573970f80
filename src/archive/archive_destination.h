// The archive folder of one run: everything that touches the destination goes through here and has a time
// limit, so that a place that stops answering, whichever call it hangs in, costs the run one limit a message
// and no more. Used by one thread.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "archive/file_placement.h"
#include "archive/message_extraction.h"
#include "archive/time_limited_worker.h"
#include "platform/files/file_descriptor.h"
#include "platform/files/file_layer.h"

namespace corvane::archive {

class ArchiveDestination {
  public:
    // `files` has to outlive every job that hung.
    ArchiveDestination(platform::FileLayer& files, std::string root, std::chrono::nanoseconds limit);
    ArchiveDestination(const ArchiveDestination&) = delete;
    ArchiveDestination& operator=(const ArchiveDestination&) = delete;
    ~ArchiveDestination();

    [[nodiscard]] const std::string& indexPath() const noexcept { return indexPath_; }

    // Makes the root with its missing parents. Throws ArchiveAccessError.
    void createRoot();

    // Keeps every other run, of any process, out of this archive until the destination goes. Throws
    // ArchiveAccessError while another one has it: two runs would replace each other's index. A place whose
    // file system knows no locks is used without one.
    void lock();

    // Writes one file durably and reads it back; the write with its flush has the limit, and so has each
    // other step. Throws ArchiveError: writeTimedOut when a step hangs. What hung may still finish the file
    // later: it then holds the bytes or a part of them, and the next run finds it.
    PlacedFile writePOSIX(const MessageBytes& message, const std::string& relativePath);

    // Flushes the folders of all written files, so that the index never names one that a power loss could
    // take.
    void syncFolders();

    // Replaces the index in one step. An old one that can't be read is kept under `keepOldAs` in the root,
    // when that isn't empty. Throws ArchiveAccessError.
    void saveIndex(std::string content, const std::string& keepOldAs,
                   const std::function<void(const std::string&)>& markHidden);

    // Flushes the root and its parent, after the index.
    void syncRoot();

  private:
    bool runLimited(std::chrono::nanoseconds limit, std::function<void(platform::FileLayer&, JobLimit&)> job);
    void sync(std::set<std::string> paths);

    platform::FileLayer& files_;
    std::string root_;
    std::string indexPath_;
    std::chrono::nanoseconds limit_;
    TimeLimitedWorker worker_;
    std::shared_ptr<ArchiveFolders> folders_; // of the worker's jobs, given up with one that hung
    std::set<std::string> touchedFolders_;
    std::shared_ptr<platform::FileDescriptor> lock_;
};

} // namespace corvane::archive
