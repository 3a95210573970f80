// Totals of messages by year and by account, and the order of lists. Pure functions, safe on any thread,
// linear in the messages.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "records/mail_account.h"
#include "records/mail_message_record.h"
#include "records/statistics_records.h"
#include "text/shared_text.h"

namespace corvane {

// A selection of messages of one list, by reference.
using MessageRefs = std::vector<const MailMessageRecord*>;

MessageRefs allOf(const MessageList& messages);

// What the statistics need of each message of a list, found out once for all of them.
struct CountedMessage {
    const MailMessageRecord* message = nullptr;
    std::optional<std::int64_t> year; // local
    std::uint32_t key = 0;            // equal for copies of one message, below the size of the list
    bool isTrashOrJunk = false;
};

using CountedMessages = std::vector<CountedMessage>;

CountedMessages countedMessages(const MessageRefs& messages);

// Id to calendar year in the time zone of the process; an undated message has no entry. The keys refer to the
// ids of the list, which must outlive the map.
using YearByID = std::unordered_map<std::string_view, std::int64_t>;
YearByID computeMessageYears(const MessageList& messages);

// The year of one message; absent without a date.
std::optional<std::int64_t> yearIn(const YearByID& years, const MailMessageRecord& message);

// What every statistic counts: without trash and junk, and each message once, the first one of its
// Message-ID.
MessageRefs countableMessages(const MessageRefs& messages);

// One entry a year from year 1 on, newest first; undated messages are left out.
std::vector<YearStat> computeYearStats(const CountedMessages& messages);
std::vector<YearStat> computeYearStats(const MessageRefs& messages);

// One entry an account with countable messages, most bytes first, then by name.
std::vector<AccountYearStatGroup> computeAccountYearStats(const CountedMessages& messages,
                                                          const std::vector<MailAccount>& accounts);
std::vector<AccountYearStatGroup> computeAccountYearStats(const MessageRefs& messages,
                                                          const std::vector<MailAccount>& accounts);

// All fields but the account names, which the caller sets.
MailScanSummary makeSummary(const MessageRefs& messages, std::int64_t scannedCount);

// Whether `a` goes before `b`. Undated messages go last in both directions; equals are ordered by subject.
bool compareByDate(const MailMessageRecord& a, const MailMessageRecord& b, bool ascending);

} // namespace corvane
