#include "model/library/presence/presence_check.h"

#include <memory>
#include <optional>
#include <stop_token>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "library/accounts/account_merge_rules.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/index/live_presence.h"
#include "mime/message_identifiers.h"
#include "records/stores/presence_cache_store.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

using Entries = std::vector<ArchivedEntry>;
using Status = ArchivedOriginalPresenceStatus;
using Statuses = std::vector<Status>;

constexpr const char* noFullDiskAccess = "no-full-disk-access";
constexpr const char* schemaUnsupported = "index-schema-unsupported";

const char* textForUser(std::string_view reason) {
    if (reason == noFullDiskAccess) return "没有完整磁盘访问权限，无法读取 Mail 当前索引。请授权后返回 App。";
    return "当前 macOS 版本的 Mail 索引已变更，暂时无法按 Message-ID 自动对照。归档邮件已安全备份；"
           "只是无法自动判断哪些原件仍在 Mail、可安全删除。";
}

// By position; an empty text for an entry without an identifier.
std::vector<SharedText> normalizedIdentifiers(const Entries& entries) {
    std::vector<SharedText> identifiers(entries.size());
    for (std::size_t at = 0; at < entries.size(); ++at) {
        const auto& stored = entries[at].record.messageIdentifier;
        const auto normalized = stored ? mime::normalizedMessageIdentifier(*stored) : std::nullopt;
        if (normalized) identifiers[at] = *stored == *normalized ? *stored : SharedText(*normalized);
    }
    return identifiers;
}

// One for each entry that can be found so, under the number of its position.
std::vector<ContentPresenceTarget> contentTargets(const Entries& entries) {
    std::vector<ContentPresenceTarget> targets;
    for (std::size_t at = 0; at < entries.size(); ++at) {
        const ArchivedEmailRecord& record = entries[at].record;
        auto address = record.date ? extractEmailAddress(record.sender) : std::nullopt;
        if (address)
            targets.push_back(
                {fmt::format("{}", at), std::move(*address), record.subject.str(), *record.date});
    }
    return targets;
}

class PresenceCheck {
  public:
    PresenceCheck(const PresenceJob& job, const SharedPresence& known, std::stop_token stop)
      : job_(job)
      , known_(*known)
      , mail_{.platform = job.platform, .support = job.support, .stop = std::move(stop)} {}

    // Absent when Mail gave no answer.
    std::optional<Statuses> compare() {
        const Entries& entries = *known_.entries;
        const std::vector<SharedText> identifiers = normalizedIdentifiers(entries);
        SharedTextSet asked(identifiers.begin(), identifiers.end());
        asked.erase(SharedText());
        const auto live = mailstore::liveMessageIdentifierPresence(mail_, job_.mailRootPath, asked);
        if (!live) return compareContent();
        Statuses statuses(entries.size());
        for (std::size_t at = 0; at < entries.size(); ++at)
            statuses[at] = identifiers[at].empty()
                               ? known_.statusAt(at)
                               : (live->contains(identifiers[at]) ? Status::present : Status::missing);
        return statuses;
    }

  private:
    // Only of an index that surely has no identifiers: one that couldn't be read may know better.
    std::optional<Statuses> compareContent() {
        const std::string& root = job_.mailRootPath;
        if (mailstore::hasMessageIDHeaders(mail_, root).value_or(true)) return std::nullopt;
        const auto targets = contentTargets(*known_.entries);
        if (targets.empty()) return std::nullopt;
        const auto found = mailstore::liveMessagePresenceByContent(mail_, root, targets);
        if (!found) return std::nullopt;
        Statuses statuses = known_.statuses;
        statuses.resize(known_.entries->size(), Status::unknown);
        for (const ContentPresenceTarget& target : targets)
            statuses[std::stoul(target.key.str())] =
                found->contains(target.key) ? Status::present : Status::missing;
        job_.log.mark(fmt::format("archived-original-presence content-match fallback entries={} matchable={}",
                                  statuses.size(), targets.size()));
        return statuses;
    }

    const PresenceJob& job_;
    const OriginalPresence& known_;
    MailStoreContext mail_;
};

SharedPresence answered(const OriginalPresence& known, Statuses statuses) {
    auto presence = std::make_shared<OriginalPresence>();
    presence->entries = known.entries;
    presence->signature = known.signature;
    presence->statuses = std::move(statuses);
    presence->checkedAt = currentTimestamp();
    return presence;
}

PresenceEnd withoutAnswer(const PresenceJob& job, const SharedPresence& known) {
    const bool isReadable = mailstore::canReadEnvelopeIndex(job.mailRootPath);
    const char* const reason = isReadable ? schemaUnsupported : noFullDiskAccess;
    job.log.mark(fmt::format("archived-original-presence failed reason={} entries={} targets={}", reason,
                             known->entries->size(), contentTargets(*known->entries).size()));
    std::string failure = textForUser(reason);
    if (!known->statuses.empty()) return {known, std::move(failure)};
    auto presence = std::make_shared<OriginalPresence>();
    presence->entries = known->entries;
    presence->signature = known->signature;
    presence->failureMessage = failure;
    return {presence, std::move(failure)};
}

} // namespace

PresenceEnd runPresenceJob(const PresenceJob& job, const ReportingTask<SharedPresence>& task) {
    const ArchivedOriginalPresenceCacheStore store(job.support);
    SharedPresence known = job.known;
    if (known->statuses.empty()) {
        if (auto restored = restoredPresence(*known, store)) {
            known = std::move(restored);
            job.log.mark(fmt::format("archived-original-presence restored cached result entries={}",
                                     known->statuses.size()));
            task.report(known);
        }
    }
    if (!job.asksMail || task.isCancelled()) return {known, std::nullopt};
    auto statuses = PresenceCheck(job, known, task.stopToken()).compare();
    if (task.isCancelled()) return {known, std::nullopt};
    if (!statuses) return withoutAnswer(job, known);
    SharedPresence presence = answered(*known, std::move(*statuses));
    store.save(presence->signature, *presence->checkedAt, *presence->entries, presence->statuses);
    return {presence, std::nullopt};
}

} // namespace corvane
