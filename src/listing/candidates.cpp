#include "listing/candidates.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

#include "listing/file_existence.h"
#include "listing/message_set.h"
#include "records/archived/stable_id.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

CandidateRules rulesOf(const CandidateInputs& inputs) {
    CandidateRules rules = inputs.rules;
    if (inputs.offer) {
        rules.accountPrefixes.clear();
        rules.years.clear();
    }
    return rules;
}

// The test of one pass over the messages.
class CandidateTest {
  public:
    explicit CandidateTest(const CandidateInputs& inputs)
      : inputs_(inputs)
      , rules_(rulesOf(inputs))
      , areAllAvailable_(inputs.locallyAvailableIDs &&
                         areAllAvailable(*inputs.messages, *inputs.locallyAvailableIDs)) {}

    bool operator()(const MailMessageRecord& message) {
        if (inputs_.offer && !inputs_.offer->contains(message.id)) return false;
        return isCandidate(message, rules_,
                           CandidateFacts{.isAvailable = [&] { return isAvailable(message); },
                                          .isArchived = [&] { return isArchived(message); },
                                          .isWithheld = [&] { return isWithheld(message); },
                                          .year = [&] { return yearOf(message); }});
    }

  private:
    bool isAvailable(const MailMessageRecord& message) {
        if (areAllAvailable_) return true;
        return inputs_.locallyAvailableIDs ? inputs_.locallyAvailableIDs->contains(message.id)
                                           : files_.isLocallyAvailable(message);
    }

    [[nodiscard]] bool isArchived(const MailMessageRecord& message) const {
        if (inputs_.archivedMessageIDs) return inputs_.archivedMessageIDs->contains(message.id);
        const auto& baseIDs = inputs_.archivedBaseIDs;
        return baseIDs && !baseIDs->empty() && baseIDs->contains(stableID(message));
    }

    [[nodiscard]] bool isWithheld(const MailMessageRecord& message) const {
        return inputs_.withheldIDs && inputs_.withheldIDs->contains(message.id);
    }

    [[nodiscard]] std::optional<std::int64_t> yearOf(const MailMessageRecord& message) const {
        if (inputs_.yearByID) return yearIn(*inputs_.yearByID, message);
        return message.date ? std::optional(localYear(*message.date)) : std::nullopt;
    }

    const CandidateInputs& inputs_;
    const CandidateRules rules_;
    const bool areAllAvailable_;
    FileExistence files_;
};

// Whether it came to the end.
template <class Visit>
bool visitCandidates(const CandidateInputs& inputs, const std::stop_token& stop, const Visit& visit) {
    CandidateTest isCandidate(inputs);
    for (const MailMessageRecord& message : *inputs.messages) {
        if (stop.stop_requested()) return false;
        if (isCandidate(message)) visit(message);
    }
    return true;
}

} // namespace

bool CandidateRules::holdYear(std::optional<std::int64_t> year) const {
    if (!limitYears()) return true;
    if (!year) return false;
    return (!maximumYear || *year <= *maximumYear) && (years.empty() || years.contains(*year));
}

SharedMessageList makeCandidates(const CandidateInputs& inputs, const std::stop_token& stop) {
    MessageList candidates;
    const bool isWhole = visitCandidates(
        inputs, stop, [&](const MailMessageRecord& message) { candidates.push_back(message); });
    return isWhole ? std::make_shared<const MessageList>(std::move(candidates)) : nullptr;
}

std::optional<std::int64_t> countCandidates(const CandidateInputs& inputs, const std::stop_token& stop) {
    std::int64_t count = 0;
    const bool isWhole = visitCandidates(inputs, stop, [&](const MailMessageRecord&) { ++count; });
    return isWhole ? std::optional(count) : std::nullopt;
}

} // namespace corvane
