#include "model/mail/index_counts.h"

#include <memory>

#include <fmt/format.h>

#include "listing/account_titles.h"
#include "mailstore/index/year_counts.h"

namespace corvane {

IndexCounts::IndexCounts(ModelContext& context, const AccountDirectory& accounts, MessageCatalog& catalog,
                         QObject* parent)
  : QObject(parent)
  , context_(context)
  , accounts_(accounts)
  , catalog_(catalog)
  , countTask_(context.tasks) {}

void IndexCounts::setIndexed(Indexed indexed) {
    counts_.indexed = std::move(indexed.counts);
    counts_.indexedByAccount = std::move(indexed.countsByAccount);
    Q_EMIT countsChanged();
}

void IndexCounts::refreshIndexedYearCounts() {
    const auto& selected = accounts_.selectedAccountPrefixes();
    CountJob job{upkeepMailStoreOf(context_), {selected.begin(), selected.end()}, {}};
    for (const MailAccount& account : accounts_.availableAccounts())
        job.prefixes.push_back(account.urlPrefix);
    countTask_.start(TaskPriority::utility, std::move(job), &IndexCounts::readCounts, [this](Counts counts) {
        counts_ = std::move(counts);
        Q_EMIT countsChanged();
        Q_EMIT countsRefreshed();
    });
}

std::optional<IndexCounts::Counts> IndexCounts::readCounts(const CountJob& job, const TaskHandle& task) {
    const MailStore& store = job.store;
    Counts counts;
    counts.indexed = mailstore::indexedYearDistinctCounts(store.context, store.rootPath, job.selection);
    for (const std::string& prefix : job.prefixes) {
        if (task.isCancelled()) return std::nullopt;
        counts.indexedByAccount[prefix] =
            mailstore::indexedYearDistinctCounts(store.context, store.rootPath, {prefix});
    }
    for (const std::string& prefix : job.prefixes) {
        if (task.isCancelled()) return std::nullopt;
        counts.undownloadedByAccount[prefix] =
            mailstore::undownloadedYearCounts(store.context, store.rootPath, {prefix});
    }
    return counts;
}

const std::vector<SpaceAccountUsage>& SpaceUsage::spaceUsage() {
    if (!catalog_.isAvailabilityKnown()) catalog_.refreshAvailabilityCacheAsync(false);
    const std::string signature =
        fmt::format("{}|{}", catalog_.messagesToken(), catalog_.availabilityToken());
    if (signature != spaceUsageSignature_) {
        spaceUsageSignature_ = signature;
        cachedSpaceUsage_ =
            computeSpaceUsage(*catalog_.messages(),
                              catalog_.isAvailabilityKnown() ? catalog_.locallyAvailableIDs().get() : nullptr,
                              accounts_.availableAccounts());
    }
    return cachedSpaceUsage_;
}

std::int64_t SpaceUsage::spaceUsageLocalTotalBytes() {
    std::int64_t total = 0;
    for (const SpaceAccountUsage& usage : spaceUsage()) total += usage.localBytes;
    return total;
}

SharedTextSet SpaceUsage::localMessageIDs(std::string_view accountPrefix, std::string_view senderKey) {
    if (!catalog_.isAvailabilityKnown()) catalog_.refreshAvailabilityCacheAsync(false);
    SharedTextSet ids;
    for (const MailMessageRecord& message : *catalog_.messages()) {
        if (accountGroupKey(message) != accountPrefix ||
            !catalog_.locallyAvailableIDs()->contains(message.id))
            continue;
        if (spaceSenderParts(message.sender).key == senderKey) ids.insert(message.id);
    }
    return ids;
}

} // namespace corvane
