// The identity by which a scan meets an archive.
#pragma once

#include <string>
#include <string_view>

#include "records/archived/archive_records.h"
#include "records/mail_message_record.h"

namespace corvane {

// "mid:" and the Message-ID; without one "ck:", the date in seconds since 1970 (0 without a date), "|",
// sender, "|", subject. The same for every copy of a message.
std::string stableID(const MailMessageRecord& message);

// The same of the message that the record was made of, by the record's own fields.
std::string stableID(const ArchivedEmailRecord& record);

// The record's id without the "#v" and digits of a variant. They are cut only where the stable id of the
// record's own fields is left: a Message-ID that ends like a variant belongs to a message of its own. A view
// into the record's id.
std::string_view baseID(const ArchivedEmailRecord& record);

} // namespace corvane
