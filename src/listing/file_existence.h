// Whether files exist, for long lists of files that lie in few folders: each folder is listed once instead of
// one look a file. The answer is that of the moment of the listing. For one job on one thread.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

class FileExistence {
  public:
    // A file that can't be looked at counts as absent.
    bool exists(const SharedText& path);

    // One of the message's files exists.
    bool isLocallyAvailable(const MailMessageRecord& message);

  private:
    struct Entry {
        std::string name;       // of a message file: short enough to lie in the string itself
        bool needsLook = false; // a link, or of unknown kind
    };

    using Folder = std::vector<Entry>; // by name

    const Folder& folder(std::string_view path);

    std::unordered_map<std::string, Folder, TextHash, TextEqual> folders_;
    std::string_view lastPath_;
    const Folder* last_ = nullptr;
};

} // namespace corvane
