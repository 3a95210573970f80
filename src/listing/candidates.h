// Which messages can be archived: the one rule by which the list, the counts, the statistics and the home
// say so. Pure but for one thing: where it isn't known which messages lie on this machine, their files are
// looked for. Any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>

#include "listing/account_titles.h"
#include "listing/message_statistics.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

// What the user asks of a candidate, beside that it lies on this machine and in no archive. Whoever shows
// candidates by account and year leaves those two empty, or the rows that aren't chosen would be missing.
struct CandidateRules {
    std::int64_t minimumBytes = 0;
    std::optional<std::int64_t> maximumYear{}; // leaves out messages without a date
    std::set<std::string> accountPrefixes{};   // keys of the account filter; empty: all
    std::set<std::int64_t> years{};            // empty: all, those without a date too

    [[nodiscard]] bool limitYears() const { return maximumYear || !years.empty(); }

    // An absent year is that of a message without a date.
    [[nodiscard]] bool holdYear(std::optional<std::int64_t> year) const;

    friend bool operator==(const CandidateRules&, const CandidateRules&) = default;
};

// What has to be known of a message, as functions: some are a look at the disk or make a text, so each is
// called only where the answer depends on it.
template <class IsAvailable, class IsArchived, class IsWithheld, class Year>
struct CandidateFacts {
    IsAvailable isAvailable; // one of its files is on this machine
    IsArchived isArchived;   // a known archive holds it, and nothing stands against that
    IsWithheld isWithheld;   // the user has set it aside, or it is recorded and can't be read whole
    Year year;               // local, absent without a date
};

// The rule. Mail in trash and copies of one message are candidates like any other; it is the statistics that
// count neither.
template <class... Facts>
bool isCandidate(const MailMessageRecord& message, const CandidateRules& rules,
                 const CandidateFacts<Facts...>& facts) {
    if (message.messageSize < rules.minimumBytes) return false;
    const auto& accounts = rules.accountPrefixes;
    if (!accounts.empty() && !accounts.contains(std::string(accountFilterKey(message)))) return false;
    if (!facts.isAvailable()) return false;
    if (rules.limitYears() && !rules.holdYear(facts.year())) return false;
    return !facts.isArchived() && !facts.isWithheld();
}

// Everything that a list or a count of candidates depends on, shared: equal inputs have equal candidates.
struct CandidateInputs {
    SharedMessageList messages; // never null
    CandidateRules rules;

    // Null: of all messages. Else these ids alone can be candidates. They were picked by account and year
    // already, so the accounts and years of the rules don't count beside them.
    std::shared_ptr<const SharedTextSet> offer;

    // Null while not known: then every file is looked for. An empty set says that nothing is on this machine.
    std::shared_ptr<const SharedTextSet> locallyAvailableIDs;

    // Which of the messages are archived. Null while not known of this very list, which may have grown since:
    // then every message's stable id is looked up in `archivedBaseIDs`.
    std::shared_ptr<const SharedTextSet> archivedMessageIDs;
    std::shared_ptr<const SharedTextSet> archivedBaseIDs;

    // Messages that are none whatever else is known of them; null for none.
    std::shared_ptr<const SharedTextSet> withheldIDs{};

    // Null while not known: then the years come from the dates.
    std::shared_ptr<const YearByID> yearByID;

    friend bool operator==(const CandidateInputs&, const CandidateInputs&) = default;
};

// The candidates in the order of the messages, sharing their texts; null when stopped.
SharedMessageList makeCandidates(const CandidateInputs& inputs, const std::stop_token& stop = {});

// How many there are; absent when stopped.
std::optional<std::int64_t> countCandidates(const CandidateInputs& inputs, const std::stop_token& stop = {});

} // namespace corvane
