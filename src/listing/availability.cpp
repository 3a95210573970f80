#include "listing/availability.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>

#include "listing/file_existence.h"
#include "platform/parallel.h"
#include "records/stable_id.h"

namespace corvane {

namespace {

// Null when stopped.
std::shared_ptr<const SharedTextSet> findAvailable(const AvailabilityJob& job, const std::stop_token& stop) {
    const MessageList& messages = *job.set->messages;
    auto available = std::make_shared<SharedTextSet>();
    available->reserve(messages.size());
    FileExistence files;
    for (const MailMessageRecord& message : messages) {
        if (stop.stop_requested()) return nullptr;
        if (job.filesWereSeen || files.isLocallyAvailable(message)) available->insert(message.id);
    }
    return available;
}

YearByID yearsByID(const CountedMessages& messages) {
    YearByID years;
    years.reserve(messages.size());
    for (const CountedMessage& counted : messages) {
        if (counted.year) years.emplace(counted.message->id.view(), *counted.year);
    }
    return years;
}

struct Selections {
    CountedMessages local; // candidates
    CountedMessages unbacked;
};

Selections selectCounted(const AvailabilityJob& job, const CountedMessages& all,
                         const SharedTextSet& available, const SharedTextSet& archived) {
    Selections selections;
    selections.local.reserve(all.size());
    selections.unbacked.reserve(all.size());
    const bool areAllLocal = areAllAvailable(*job.set->messages, available);
    for (const CountedMessage& counted : all) {
        if (!archived.empty() && archived.contains(counted.message->id)) continue;
        selections.unbacked.push_back(counted);
        const CandidateFacts facts{
            .isAvailable = [&] { return areAllLocal || available.contains(counted.message->id); },
            .isArchived = [] { return false; }, // looked up above
            .year = [&] { return counted.year; }};
        if (isCandidate(*counted.message, job.inputs.limits, facts)) selections.local.push_back(counted);
    }
    return selections;
}

std::shared_ptr<const SharedTextSet> archivedIDs(const AvailabilityJob& job) {
    const auto& baseIDs = job.inputs.archivedBaseIDs;
    if (job.known && job.known->archivedBaseIDs == baseIDs) return job.known->archivedMessageIDs;
    return corvane::archivedIDs(*job.set->messages, *baseIDs);
}

} // namespace

std::shared_ptr<const SharedTextSet> archivedIDs(const MessageList& messages, const SharedTextSet& baseIDs) {
    auto archived = std::make_shared<SharedTextSet>();
    if (baseIDs.empty()) return archived;
    for (const MailMessageRecord& message : messages) {
        if (baseIDs.contains(stableID(message))) archived->insert(message.id);
    }
    return archived;
}

// The list waits for this, so what doesn't depend on each other runs at a time.
std::optional<AvailabilityResult> computeAvailability(const AvailabilityJob& job,
                                                      const std::stop_token& stop) {
    const auto& accounts = job.inputs.accounts;
    const MessageSet& set = *job.set;
    AvailabilityResult result;
    // The growing list of a scan has none yet.
    const auto countedSet =
        set.counted ? set.counted
                    : std::make_shared<const CountedMessages>(countedMessages(allOf(*set.messages)));
    const CountedMessages& all = *countedSet;
    result.archivedBaseIDs = job.inputs.archivedBaseIDs;
    platform::parallelCalls(
        [&] {
            result.locallyAvailableIDs =
                job.known ? job.known->locallyAvailableIDs : findAvailable(job, stop);
            result.archivedMessageIDs = archivedIDs(job);
        },
        [&] {
            result.yearByID =
                job.known ? job.known->yearByID : std::make_shared<const YearByID>(yearsByID(all));
            result.mailAccountYearStats = computeAccountYearStats(all, accounts);
        });
    if (!result.locallyAvailableIDs || stop.stop_requested()) return std::nullopt;
    const Selections selections =
        selectCounted(job, all, *result.locallyAvailableIDs, *result.archivedMessageIDs);
    // Nothing archived, or everything on this disk and within the limits: what is selected is all.
    const auto accountStats = [&](const CountedMessages& selected) {
        return selected.size() == all.size() ? result.mailAccountYearStats
                                             : computeAccountYearStats(selected, accounts);
    };
    platform::parallelCalls(
        [&] {
            result.localYearStats = computeYearStats(selections.local);
            result.accountYearStats = accountStats(selections.local);
        },
        [&] { result.unbackedAccountYearStats = accountStats(selections.unbacked); });
    result.localCount = static_cast<std::int64_t>(selections.local.size());
    for (const CountedMessage& counted : selections.local) result.localBytes += counted.message->messageSize;
    return result;
}

} // namespace corvane
