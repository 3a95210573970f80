// Names of the files in an archive: <year>/<account>/<day> <subject>.eml below its root. The names depend on
// the message and on the paths in use alone, never on the disk: this is what lets a run find the files of a
// killed one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane::archive {

// The most bytes that a file system takes for one component of a path.
inline constexpr std::size_t maximumNameBytes = 255;

// The text as one component of a path: hidden characters (text/hidden_characters.h) go, slash and the other
// characters that file systems refuse become "-", dashes, dots and blanks go from the ends, ill-formed UTF-8
// is repaired. A random UUID when nothing is left.
std::string safeFileName(std::string_view text);

// The folder of mail of that day: its year in the time zone of the process; "未知年份" without a date.
std::string yearFolder(const std::optional<Date>& date);

// "yyyy-MM-dd " in the time zone of the process; empty without a date.
std::string datePrefix(const MailMessageRecord& message);

// The first 30 user-perceived characters of the trimmed subject, hidden characters left out before.
std::string subjectFragment(const MailMessageRecord& message);

// The relative paths in use in one archive, and the next free one. Paths are compared by canonical
// equivalence, with their case. Not thread-safe.
class ArchivePaths {
  public:
    // Whatever the path is: one from an index is only ever avoided here.
    void markUsed(const SharedText& relativePath);

    // The first of <stem>.eml, <stem>-2.eml, <stem>-3.eml... that isn't in use; it is in use from then on. No
    // component exceeds maximumNameBytes: what is too long loses characters at the end of the subject, or of
    // the account's folder.
    std::string uniqueRelativePath(const MailMessageRecord& message, std::string_view suffix);

  private:
    // True when it wasn't in use before.
    bool use(const SharedText& relativePath);

    SharedTextSet used_; // composed
    // Where the search for a number goes on, by the taken path: thousands of messages may share a name.
    std::unordered_map<std::string, std::int64_t> nextNumbers_;
};

} // namespace corvane::archive
