#include "listing/availability.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "listing/file_existence.h"
#include "platform/threads/parallel.h"
#include "records/archived/stable_id.h"

namespace corvane {

namespace {

// Null when stopped.
std::shared_ptr<const SharedTextSet> findAvailable(const AvailabilityJob& job, const std::stop_token& stop) {
    const MessageList& messages = *job.set->messages;
    auto available = std::make_shared<SharedTextSet>();
    available->reserve(messages.size());
    FileExistence files;
    const auto isThere = [&](const MailMessageRecord& message) {
        return isOfMailVersion(message, job.mailVersion) && files.isLocallyAvailable(message);
    };
    for (const MailMessageRecord& message : messages) {
        if (stop.stop_requested()) return nullptr;
        if (job.filesWereSeen || isThere(message)) available->insert(message.id);
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
                         const AvailabilityResult& result) {
    const SharedTextSet& available = *result.locallyAvailableIDs;
    const SharedTextSet& archived = *result.archivedMessageIDs;
    const SharedTextSet& withheld = *result.withheldIDs;
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
            .isWithheld = [&] { return !withheld.empty() && withheld.contains(counted.message->id); },
            .year = [&] { return counted.year; }};
        if (isCandidate(*counted.message, job.inputs.limits, facts)) selections.local.push_back(counted);
    }
    return selections;
}

void findRecorded(const AvailabilityJob& job, AvailabilityResult& result) {
    const auto& baseIDs = job.inputs.archivedBaseIDs;
    if (job.known && job.known->archivedBaseIDs == baseIDs) {
        result.recordedMessageIDs = job.known->recordedMessageIDs;
        result.ambiguousIDs = job.known->ambiguousIDs;
    } else {
        setRecorded(result, *job.set->messages, *baseIDs);
    }
}

// A scan makes one message of all that have one Message-ID.
SharedTextSet idsSharingStableID(const MessageList& messages, const SharedTextSet& recordedIDs) {
    SharedTextSet sharing;
    std::unordered_map<std::string, const MailMessageRecord*> firsts;
    for (const MailMessageRecord& message : messages) {
        if (message.messageIdentifier && !message.messageIdentifier->empty()) continue;
        if (!recordedIDs.contains(message.id)) continue;
        const auto [first, isNew] = firsts.try_emplace(stableID(message), &message);
        if (isNew) continue;
        sharing.insert(first->second->id);
        sharing.insert(message.id);
    }
    return sharing;
}

// Null when stopped.
SharedProofTable proofsOf(const AvailabilityJob& job, const AvailabilityResult& result,
                          const std::stop_token& stop) {
    const SharedProofTable earlier = job.known ? job.known->proofs : nullptr;
    const bool isSame = earlier && earlier->inputs == job.inputs.proof &&
                        job.known->recordedMessageIDs == result.recordedMessageIDs;
    return isSame ? earlier
                  : computeProofTable(*job.set->messages, *result.locallyAvailableIDs,
                                      *result.recordedMessageIDs, job.inputs.proof, earlier, stop);
}

std::shared_ptr<const SharedTextSet> withheldIDs(const AvailabilityResult& result) {
    SharedTextSet withheld = *result.setAsideIDs;
    for (const auto& [id, verdict] : result.proofs->against) {
        if (!countsAsArchived(verdict.outcome) && !isOfferedAgain(verdict.outcome)) withheld.insert(id);
    }
    return std::make_shared<const SharedTextSet>(std::move(withheld));
}

bool hasFailed(const MailMessageRecord& message, const SharedTextSet& failedPaths) {
    if (failedPaths.contains(message.fileURL.path())) return true;
    if (!message.relatedMessageFileURLs) return false;
    return std::ranges::any_of(*message.relatedMessageFileURLs,
                               [&](const FileURL& url) { return failedPaths.contains(url.path()); });
}

std::shared_ptr<const SharedTextSet> troubledIDs(const AvailabilityJob& job,
                                                 const AvailabilityResult& result) {
    SharedTextSet troubled = *result.setAsideIDs;
    for (const auto& [id, verdict] : result.proofs->against) troubled.insert(id);
    for (const auto* ids : {result.proofs->unmatchedIDs.get(), result.ambiguousIDs.get()}) {
        for (const SharedText& id : *ids) {
            if (!result.archivedMessageIDs->contains(id)) troubled.insert(id);
        }
    }
    const SharedTextSet& failedPaths = *job.inputs.failedPaths;
    if (!failedPaths.empty()) {
        for (const MailMessageRecord& message : *job.set->messages) {
            if (!result.archivedMessageIDs->contains(message.id) && hasFailed(message, failedPaths))
                troubled.insert(message.id);
        }
    }
    return std::make_shared<const SharedTextSet>(std::move(troubled));
}

// The very one of before where nothing has changed in it.
template <class Shared>
Shared unlessEqual(Shared made, const Shared& earlier) {
    return *made == *earlier ? earlier : made;
}

// Which messages count as archived, and why others don't. False when stopped.
bool judge(const AvailabilityJob& job, AvailabilityResult& result, const std::stop_token& stop) {
    result.setAsideIDs = messageIDsOf(*job.set->messages, *job.inputs.setAside);
    result.proofs = proofsOf(job, result, stop);
    if (!result.proofs) return false;
    result.withheldIDs = withheldIDs(result);
    result.archivedMessageIDs = archivedIDs(result);
    result.troubledIDs = troubledIDs(job, result);
    if (!job.known) return true;
    result.setAsideIDs = unlessEqual(std::move(result.setAsideIDs), job.known->setAsideIDs);
    result.withheldIDs = unlessEqual(std::move(result.withheldIDs), job.known->withheldIDs);
    result.troubledIDs = unlessEqual(std::move(result.troubledIDs), job.known->troubledIDs);
    result.archivedMessageIDs =
        unlessEqual(std::move(result.archivedMessageIDs), job.known->archivedMessageIDs);
    return true;
}

// "V10", as Mail names the folders of its versions.
bool isVersionName(std::string_view name) {
    return name.size() > 1 && name.front() == 'V' &&
           std::ranges::all_of(name.substr(1), [](char sign) { return sign >= '0' && sign <= '9'; });
}

} // namespace

bool isOfMailVersion(const MailMessageRecord& message, const std::string& version) {
    if (version.empty()) return true;
    const auto path = message.fileURL.path();
    std::string_view rest = path.view();
    // The innermost folder of such a name: the disk may have one as well.
    for (auto end = rest.rfind('/'); end != std::string_view::npos; end = rest.rfind('/')) {
        const std::string_view name = rest.substr(end + 1);
        if (isVersionName(name)) return name == version;
        rest = rest.substr(0, end);
    }
    return false;
}

std::shared_ptr<const SharedTextSet> messageIDsOf(const MessageList& messages,
                                                  const SharedTextSet& stableIDs) {
    auto ids = std::make_shared<SharedTextSet>();
    if (stableIDs.empty()) return ids;
    for (const MailMessageRecord& message : messages) {
        if (stableIDs.contains(stableID(message))) ids->insert(message.id);
    }
    return ids;
}

void setRecorded(AvailabilityResult& result, const MessageList& messages, const SharedTextSet& baseIDs) {
    result.recordedMessageIDs = messageIDsOf(messages, baseIDs);
    result.ambiguousIDs =
        std::make_shared<const SharedTextSet>(idsSharingStableID(messages, *result.recordedMessageIDs));
}

std::shared_ptr<const SharedTextSet> archivedIDs(const AvailabilityResult& result) {
    const SharedTextSet& setAside = *result.setAsideIDs;
    const SharedTextSet& ambiguous = *result.ambiguousIDs;
    const SharedTextSet& unmatched = *result.proofs->unmatchedIDs;
    const auto& against = result.proofs->against;
    if (setAside.empty() && ambiguous.empty() && unmatched.empty() && against.empty())
        return result.recordedMessageIDs;
    SharedTextSet archived = *result.recordedMessageIDs;
    for (const auto& [id, verdict] : against) archived.erase(id);
    for (const SharedText& id : setAside) archived.erase(id);
    for (const SharedText& id : unmatched) archived.erase(id);
    for (const SharedText& id : ambiguous) {
        if (!result.proofs->provenIDs->contains(id)) archived.erase(id);
    }
    return std::make_shared<const SharedTextSet>(std::move(archived));
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
            findRecorded(job, result);
        },
        [&] {
            result.yearByID =
                job.known ? job.known->yearByID : std::make_shared<const YearByID>(yearsByID(all));
            result.mailAccountYearStats = computeAccountYearStats(all, accounts);
        });
    if (!result.locallyAvailableIDs || stop.stop_requested()) return std::nullopt;
    if (!judge(job, result, stop)) return std::nullopt;
    const Selections selections = selectCounted(job, all, result);
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
