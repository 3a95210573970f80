// Where Mail stores the attachments of a message, and an index of these places for a walk through a whole
// store. Only ever looks; what can't be read has no files.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mailstore/folders/attachment_root.h"
#include "records/file_url.h"

namespace corvane {

class MailAttachmentFileLocator {
  public:
    // The "Attachments" folders of a store by their paths.
    class Index {
      public:
        // The files of a message, sorted by name in the human order; those of the nearest place that has any,
        // empty without one.
        [[nodiscard]] std::vector<StoredAttachment> attachmentFiles(const FileURL& messageFile) const;

        // Folders of messages over all roots.
        [[nodiscard]] std::size_t folderCount() const;

      private:
        friend class MailAttachmentFileLocator;

        std::unordered_map<std::string, AttachmentRoot> roots_;
    };

    // For all messages of the newest version folder of a store, whose folders are walked through.
    static Index makeIndex(const std::string& storeRoot);

    // Without an index: the files of a message in the nearest place that has any, found by looking at no more
    // than so many entries of each place.
    static std::vector<StoredAttachment> attachmentFiles(const FileURL& messageFile,
                                                         std::size_t maxVisitedItems);

    // Where attachments of the messages in a folder may lie, nearest first: "Attachments" in it and up to
    // seven above, and beside a folder "Messages".
    static std::vector<std::string> candidateAttachmentRoots(std::string_view messageFolder);

    // The regular files among the first `maxVisitedItems` entries at any depth.
    static std::vector<StoredAttachment> regularFiles(const std::string& folder, std::size_t maxVisitedItems);
};

} // namespace corvane
