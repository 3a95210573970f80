// Under which key a message's account is known, and what an account is called: one answer for every list,
// statistic and screen. Pure functions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "records/mail_account.h"
#include "records/mail_message_record.h"

namespace corvane {

// The key by which filters and figures of safety know a message: its account, `unclassifiedAccountKey` when
// it names none. An empty name is a key of its own here, as a saved filter may hold it.
std::string_view accountFilterKey(const MailMessageRecord& message);

// The key under which statistics and figures of space gather a message: an empty name counts as none.
std::string_view accountGroupKey(const MailMessageRecord& message);

// The account of a key, null when it is none of these. Valid as long as the list is.
const MailAccount* findAccount(std::string_view key, const std::vector<MailAccount>& accounts);

// What the user reads for an account key: the label of the known account; for messages without an account the
// name of that group; else the name that the mail itself has for it, trimmed. Where that comes out empty, the
// key.
std::string accountTitle(std::string_view key, const std::vector<MailAccount>& accounts,
                         std::string_view nameInMail);

// The same with the name as one message of the account has it.
std::string accountTitle(std::string_view key, const std::vector<MailAccount>& accounts,
                         const MailMessageRecord& message);

} // namespace corvane
