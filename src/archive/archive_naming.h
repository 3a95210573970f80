// Where a message lies in an archive: "<year>/<account>/<stem>.eml". Pure but for the random names of what
// has none. No name leaves its folder, and none is longer than a file system takes.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

#include "records/mail_message_record.h"

namespace corvane::archive {

// The text as one path component: / : \ ? * " < > | and NUL become "-"; "-", "." and blanks go from both
// ends. An empty rest gives a fresh random UUID.
std::string safeFileName(std::string_view text);

// "yyyy-MM-dd " in local time; empty without a date.
std::string datePrefix(const MailMessageRecord& message);

// The first 30 user-perceived characters of the trimmed subject, or a text for none.
std::string subjectFragment(const MailMessageRecord& message);

// Relative paths in use, compared by canonical equivalence.
class UsedPaths {
  public:
    // False when the path was there.
    bool insert(std::string_view relativePath);

  private:
    std::unordered_set<std::string> composed_;
};

// The first of "<stem>.eml", "<stem>-2.eml", ... that isn't used, which it then is. Only `used` is asked,
// never the disk: that is how a later run finds the files of an interrupted one.
std::string uniqueRelativePath(const MailMessageRecord& message, std::string_view suffix, UsedPaths& used);

} // namespace corvane::archive
