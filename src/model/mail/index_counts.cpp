#include "model/mail/index_counts.h"

#include <memory>

#include "listing/account_titles.h"
#include "mailstore/index/year_counts.h"
#include "model/mail/mail_store.h"

namespace corvane {

struct IndexCounts::CountJob {
    MailStore store;
    std::vector<std::string> selection; // prefixes of the selected accounts
    std::vector<std::string> prefixes;  // of all accounts
};

IndexCounts::IndexCounts(ModelContext& context, const AccountDirectory& accounts, QObject* parent)
  : QObject(parent)
  , context_(context)
  , accounts_(accounts)
  , countTask_(context.tasks) {}

void IndexCounts::setIndexed(Indexed indexed) {
    counts_.indexed = std::move(indexed.counts);
    counts_.indexedByAccount = std::move(indexed.countsByAccount);
    counts_.partialByAccount = std::move(indexed.partialByAccount);
    isKnown_ = indexed.isKnown;
    Q_EMIT countsChanged();
}

void IndexCounts::refreshIndexedYearCounts() {
    const auto& selected = accounts_.selectedAccountPrefixes();
    CountJob job{upkeepMailStoreOf(context_), {selected.begin(), selected.end()}, {}};
    for (const MailAccount& account : accounts_.availableAccounts())
        job.prefixes.push_back(account.urlPrefix);
    countTask_.start(TaskPriority::utility, std::move(job), &IndexCounts::readCounts, [this](Counts counts) {
        counts_ = std::move(counts);
        isKnown_ = true;
        Q_EMIT countsChanged();
        Q_EMIT countsRefreshed();
    });
}

std::optional<IndexCounts::Counts> IndexCounts::readCounts(const CountJob& job, const TaskHandle& task) {
    MailStore store = job.store;
    store.context.stop = task.stopToken();
    Counts counts;
    const auto indexed = mailstore::indexedYearDistinctCounts(store.context, store.rootPath, job.selection);
    if (!indexed) return std::nullopt;
    counts.indexed = *indexed;
    for (const std::string& prefix : job.prefixes) {
        const auto ofAccount = mailstore::indexedYearDistinctCounts(store.context, store.rootPath, {prefix});
        if (!ofAccount) return std::nullopt;
        counts.indexedByAccount[prefix] = *ofAccount;
    }
    for (const std::string& prefix : job.prefixes) {
        const auto ofAccount = mailstore::undownloadedYears(store.context, store.rootPath, {prefix});
        if (!ofAccount) return std::nullopt;
        counts.undownloadedByAccount[prefix] = ofAccount->all;
        counts.partialByAccount[prefix] = ofAccount->partial;
    }
    return counts;
}

} // namespace corvane
