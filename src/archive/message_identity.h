// Whose message a file holds, as far as its header tells. Mail numbers its files anew when it rebuilds its
// index, so that a path of an earlier scan may lead to another mail; and files of an archive can be mixed up.
// Pure, on bytes; thread-safe.
#pragma once

#include <optional>
#include <string_view>

#include "records/archived/archive_records.h"
#include "records/mail_message_record.h"

namespace corvane::archive {

// The message that a file should hold. Lives only as long as what it was made of.
struct ExpectedMessage {
    std::optional<std::string_view> messageIdentifier; // absent, not empty, where it is unknown
    std::string_view subject;                          // may be a placeholder for an empty one
    std::optional<Date> date;

    static ExpectedMessage of(const MailMessageRecord& message);
    static ExpectedMessage of(const ArchivedEmailRecord& record);
};

// True when the header of a mail is surely that of another message, decoded as for the lists and decoded as
// for a rebuilt index: both sides have a Message-ID, these differ, and so do the subjects or, by more than a
// day, the dates. Without a Message-ID on one side subject and date have to differ both. What is absent, or
// can't be understood, never differs. Lines may end in LF, CR LF or CR alone.
bool holdsAnotherMessage(const ExpectedMessage& expected, std::string_view mail);

} // namespace corvane::archive
