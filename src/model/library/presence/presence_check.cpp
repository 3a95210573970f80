#include "model/library/presence/presence_check.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "library/accounts/account_merge_rules.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/index/live_presence.h"
#include "mime/message_identifiers.h"
#include "platform/threads/parallel.h"
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

// The Message-IDs of entries, which outlive them, in their normalized form.
class NormalizedIdentifiers {
  public:
    explicit NormalizedIdentifiers(const Entries& entries)
      : views_(entries.size())
      , made_((entries.size() + entriesPerPart - 1) / entriesPerPart) {
        platform::parallelFor(0, made_.size(), [&](std::size_t part) {
            const std::size_t end = std::min((part + 1) * entriesPerPart, entries.size());
            for (std::size_t at = part * entriesPerPart; at < end; ++at)
                if (const auto& stored = entries[at].record.messageIdentifier)
                    views_[at] = normalized(*stored, made_[part]);
        });
    }

    // By position; empty for an entry without one.
    [[nodiscard]] const std::vector<std::string_view>& views() const { return views_; }

  private:
    static constexpr std::size_t entriesPerPart = 4096;

    // Almost all are recorded in that form.
    static std::string_view normalized(std::string_view stored, std::deque<std::string>& made) {
        std::string room;
        const std::string_view identifier = mime::normalizedMessageIdentifier(stored, room);
        if (room.empty()) return identifier;
        return made.emplace_back(std::move(room));
    }

    std::vector<std::string_view> views_;
    std::vector<std::deque<std::string>> made_;
};

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
        const NormalizedIdentifiers identifiers(entries);
        const auto isLive =
            mailstore::liveMessageIdentifierPresence(mail_, job_.mailRootPath, identifiers.views());
        if (!isLive) return compareContent();
        Statuses statuses(entries.size());
        for (std::size_t at = 0; at < entries.size(); ++at) {
            const bool isKnown = !identifiers.views()[at].empty();
            statuses[at] = !isKnown ? known_.statusAt(at) : (*isLive)[at] ? Status::present : Status::missing;
        }
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
