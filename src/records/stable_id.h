// The identity by which a scan meets an archive.
#pragma once

#include <string>
#include <string_view>

#include "records/mail_message_record.h"

namespace corvane {

// "mid:" and the Message-ID; without one "ck:", the date in seconds since 1970 (0 without a date), "|",
// sender,
// "|", subject. The same for every copy of a message.
std::string stableID(const MailMessageRecord& message);

// A record's id up to the first "#v": the stable id of its message.
std::string_view baseID(std::string_view recordID);

} // namespace corvane
