// Finds the files that Mail stores for attachments, in <folder of the messages or above>/Attachments/<base
// name of the message file>/<part>/<file name>. Only ever looks; what can't be read has no files.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "records/file_url.h"
#include "text/shared_text.h"

namespace corvane {

class MailAttachmentFileLocator {
  public:
    // Which messages have a folder of attachments, learnt from one listing of each "Attachments" folder
    // instead of several looks a message. Immutable, so it is shared by threads without a lock; a message's
    // own folder is read when it is asked for.
    class Index {
      public:
        Index() = default;
        Index(Index&&) = default;
        Index& operator=(Index&&) = default;

        // The files of a message, sorted by name in the human order; those of the nearest place that has any.
        [[nodiscard]] std::vector<FileURL> attachmentFiles(const FileURL& messageFile) const;

        // Folders of messages over all roots.
        [[nodiscard]] std::size_t folderCount() const { return folderCount_; }

      private:
        friend class MailAttachmentFileLocator;

        struct Root;
        [[nodiscard]] std::vector<const Root*> rootsOf(std::string_view messageFolder) const;

        struct Root {
            std::string path;
            std::vector<std::string> messageFolders; // ascending
        };

        std::vector<Root> roots_; // only those with a folder in them
        // The folder of a message to its roots, nearest first; folders without any have no entry.
        std::unordered_map<std::string, std::vector<const Root*>, TextHash, TextEqual> rootsByFolder_;
        // Where the folders of messages weren't known beforehand: the roots by their paths.
        std::unordered_map<std::string_view, const Root*> rootsByPath_;
        std::size_t folderCount_ = 0;
    };

    // For these message files. Lists the roots in parallel.
    static Index makeIndex(const std::vector<FileURL>& messageFiles);

    // For all messages of the newest version folder of a store, whose folders are walked through.
    static Index makeIndex(const std::string& storeRoot);

    // Without an index: the files of a message in the nearest place that has any, found by looking at no more
    // than so many entries of each place.
    static std::vector<FileURL> attachmentFiles(const FileURL& messageFile, std::size_t maxVisitedItems);

    // Where attachments of a message may lie, nearest first: "Attachments" in its folder and up to seven
    // above, and beside a folder "Messages".
    static std::vector<std::string> candidateAttachmentRoots(std::string_view messageFilePath);

    // The regular files in a message's folder and one level below, sorted by name in the human order.
    static std::vector<FileURL> filesInMessageFolder(const std::string& folder);

    // The regular files among the first entries at any depth.
    static std::vector<FileURL> regularFiles(const std::string& folder, std::size_t maxVisitedItems);
};

} // namespace corvane
