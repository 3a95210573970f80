// The files that Mail stores for attachments, in <folder of the messages or above>/Attachments/<base name of
// the message file>/<part>/<file name>. Only ever looks; what can't be read has no files.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "records/file_url.h"

namespace corvane {

struct StoredAttachment {
    FileURL url;
    std::optional<std::int64_t> size; // bytes; absent when it can't be read
};

// One "Attachments" folder: which messages have a folder in it, learnt from one listing instead of several
// looks a message. A message's own folder is read when it is asked for, unless it was read ahead.
class AttachmentRoot {
  public:
    // Lists the folder; one that can't be listed is empty.
    explicit AttachmentRoot(std::string path);

    // Reads the folders of all messages, until a stop is requested. Before the root is shared between
    // threads.
    void readAhead(const std::stop_token& stop);

    // The files of a message, sorted by name in the human order. Any thread.
    [[nodiscard]] std::vector<StoredAttachment> files(std::string_view baseName) const;

    // The rows from `first` up to but not including `end` that have a folder here, ascending.
    [[nodiscard]] std::span<const std::int64_t> rowsBetween(std::int64_t first, std::int64_t end) const;

    // Folders of messages.
    [[nodiscard]] std::size_t folderCount() const { return folders_.size(); }

    // Whether some message's attachments were looked for here. Any thread.
    void markUsed() const { isUsed_.store(true, std::memory_order_relaxed); }

    [[nodiscard]] bool isUsed() const { return isUsed_.load(std::memory_order_relaxed); }

  private:
    struct MessageFolder {
        std::string name;
        std::optional<std::vector<StoredAttachment>> files; // where it was read ahead
    };

    [[nodiscard]] std::vector<StoredAttachment> read(const MessageFolder& folder) const;

    std::string path_;
    std::vector<MessageFolder> folders_; // ascending
    std::vector<std::int64_t> rowIDs_;   // of those that are named by one, ascending
    mutable std::atomic<bool> isUsed_ = false;
};

namespace mailstore {

// Nearest first.
using AttachmentRoots = std::vector<const AttachmentRoot*>;

// The files of a message; those of the nearest place that has any, empty without one.
std::vector<StoredAttachment> attachmentFiles(const AttachmentRoots& roots, std::string_view baseName);

} // namespace mailstore

} // namespace corvane
