#include "model/mail/index_counts.h"

#include <memory>
#include <utility>

#include "listing/account_titles.h"
#include "mailstore/accounts/accounts_in_mail.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/index/downloads_by_year.h"
#include "mailstore/index/year_counts.h"
#include "model/mail/store/mail_store.h"

namespace corvane {

struct IndexCounts::CountJob {
    MailStore store;
    std::vector<std::string> selectedPrefixes;
    std::vector<std::string> prefixes; // of all accounts
    SharedMessageList messages;
};

struct IndexCounts::Answer {
    std::optional<Counts> counts;
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
    hasFailed_ = false;
    Q_EMIT countsChanged();
}

void IndexCounts::refreshIndexedYearCounts(SharedMessageList messages) {
    const auto& selected = accounts_.selectedAccountPrefixes();
    CountJob job{upkeepMailStoreOf(context_), {selected.begin(), selected.end()}, {}, std::move(messages)};
    for (const MailAccount& account : accounts_.availableAccounts())
        job.prefixes.push_back(account.urlPrefix);
    isReading_ = true;
    readAt_ = std::chrono::steady_clock::now();
    countTask_.start(TaskPriority::aside, std::move(job), &IndexCounts::answer,
                     [this](Answer answer) { publish(std::move(answer)); });
}

void IndexCounts::refreshIfOld(SharedMessageList messages) {
    if (isReading_ || !(hasFailed_ || areOld())) return;
    refreshIndexedYearCounts(std::move(messages));
    Q_EMIT countsChanged();
}

bool IndexCounts::areOld() const {
    constexpr std::chrono::minutes validity{1};
    return readAt_ && std::chrono::steady_clock::now() - *readAt_ > validity;
}

void IndexCounts::publish(Answer answer) {
    isReading_ = false;
    const bool isRefreshed = answer.counts.has_value();
    hasFailed_ = !answer.counts || !answer.counts->foundByMail;
    if (answer.counts) {
        context_.tasks.discard(std::exchange(counts_, std::move(*answer.counts)).foundByMail);
        isKnown_ = true;
    }
    Q_EMIT countsChanged();
    if (isRefreshed) Q_EMIT countsRefreshed();
}

IndexCounts::Answer IndexCounts::answer(const CountJob& job, const TaskHandle& task) {
    return {readCounts(job, task)};
}

std::optional<IndexCounts::Counts> IndexCounts::readCounts(const CountJob& job, const TaskHandle& task) {
    MailStore store = job.store;
    store.context.stop = task.stopToken();
    const auto canBeAsked = [&] { return mailstore::canQueryEnvelopeIndex(store.context, store.rootPath); };
    const bool couldBeAsked = canBeAsked();
    Counts counts;
    const auto indexed =
        mailstore::indexedYearDistinctCounts(store.context, store.rootPath, job.selectedPrefixes);
    if (!indexed) return std::nullopt;
    counts.indexed = *indexed;
    for (const std::string& prefix : job.prefixes) {
        const auto ofAccount = mailstore::indexedYearDistinctCounts(store.context, store.rootPath, {prefix});
        if (!ofAccount) return std::nullopt;
        counts.indexedByAccount[prefix] = *ofAccount;
    }
    auto inMail = mailstore::queryAccountsInMail(store.context, store.rootPath);
    if (!inMail) return std::nullopt;
    FoundByMailMaker found(job.messages, std::move(*inMail));
    for (const std::string& prefix : job.prefixes) {
        const auto ofAccount = mailstore::downloadsByYear(store.context, store.rootPath, {prefix});
        if (!ofAccount) return std::nullopt;
        counts.undownloadedByAccount[prefix] = ofAccount->undownloaded;
        counts.partialByAccount[prefix] = ofAccount->partial;
        found.add(prefix, *ofAccount);
    }
    // Without an index all counts are empty, which says nothing of what a search in Mail finds.
    if (couldBeAsked && canBeAsked()) counts.foundByMail = std::move(found).result();
    return counts;
}

} // namespace corvane
