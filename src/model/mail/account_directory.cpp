#include "model/mail/account_directory.h"

#include <exception>
#include <map>
#include <stop_token>

#include "mailstore/accounts/account_discovery.h"
#include "mailstore/accounts/account_duplication.h"
#include "mailstore/accounts/account_queries.h"
#include "mailstore/folders/mailbox_url.h"
#include "mailstore/sqlite/mail_index_query_error.h"
#include "model/mail/scan/empty_scan.h"
#include "model/mail/store/mail_store.h"
#include "platform/threads/parallel.h"
#include "records/stores/settings_keys.h"

namespace corvane {

struct FoundAccounts {
    std::vector<MailAccount> accounts;
    std::string emptyMessage; // why there are none
    bool isAnswer = true;     // false when the index couldn't be looked at
};

namespace {

std::vector<MailAccount> readAccounts(const MailStore& store) {
    std::vector<MailAccount> accounts;
    std::map<std::string, std::vector<FolderInfo>> folders;
    platform::parallelCalls(
        [&] { accounts = mailstore::queryAccounts(store.context, store.rootPath); },
        [&] { folders = mailstore::queryFoldersByAccount(store.context, store.rootPath); });
    for (MailAccount& account : accounts) {
        const auto found = folders.find(mailstore::withoutImapScheme(account.urlPrefix));
        if (found != folders.end()) account.folders = found->second;
    }
    return accounts;
}

bool addNotes(std::vector<MailAccount>& accounts, const std::map<std::string, std::string>& notes) {
    bool changed = false;
    for (MailAccount& account : accounts) {
        const auto note = notes.find(account.urlPrefix);
        if (note == notes.end()) continue;
        account.duplicationNote = note->second;
        changed = true;
    }
    return changed;
}

struct ReadJob {
    MailAccountCacheStore cache;
    MailStore store;
    MailStore upkeep; // for what nobody waits for
};

FoundAccounts findAccounts(const MailStore& store) {
    try {
        FoundAccounts found{readAccounts(store), {}};
        if (found.accounts.empty()) found.emptyMessage = emptyScanFailureMessage(store, std::nullopt).text;
        return found;
    } catch (const MailIndexQueryError& error) {
        return {{}, error.what(), false};
    }
}

MailStore withStop(MailStore store, const std::stop_token& stop) {
    store.context.stop = stop;
    return store;
}

// Reports the accounts as soon as they are read. Returns them again with the notes on duplication, absent
// where there are none.
std::optional<std::vector<MailAccount>> readAndAnalyze(const ReadJob& job,
                                                       const ReportingTask<FoundAccounts>& task) {
    const FoundAccounts found = findAccounts(withStop(job.store, task.stopToken()));
    task.report(found);
    if (task.isCancelled() || !found.isAnswer) return std::nullopt;
    std::vector<MailAccount> accounts = found.accounts;
    job.cache.save(job.store.rootPath, accounts);
    if (accounts.size() < 2) return std::nullopt;
    const MailStore upkeep = withStop(job.upkeep, task.stopToken());
    const auto notes = mailstore::analyzeDuplication(upkeep.context, accounts, upkeep.rootPath);
    if (!addNotes(accounts, notes) || task.isCancelled()) return std::nullopt;
    job.cache.save(job.store.rootPath, accounts);
    return accounts;
}

} // namespace

const std::string& scannedName(const MailAccount& account) {
    return account.linkedAccountEmail ? *account.linkedAccountEmail : account.emailAddress;
}

AccountDirectory::AccountDirectory(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , cache_(context.support)
  , readTask_(context.tasks) {
    if (const auto stored = context.settings.textList(selectedAccountPrefixesKey)) {
        selectedPrefixes_.insert(stored->begin(), stored->end());
    }
}

void AccountDirectory::setSelectedAccountPrefixes(std::set<std::string> prefixes) {
    selectedPrefixes_ = std::move(prefixes);
    context_.settings.setTextList(selectedAccountPrefixesKey,
                                  {selectedPrefixes_.begin(), selectedPrefixes_.end()});
    Q_EMIT selectionChanged();
}

bool AccountDirectory::loadCachedAccounts() {
    std::optional<std::vector<MailAccount>> cached;
    try {
        cached = cache_.load(context_.mailRootPath);
    } catch (const std::exception&) { // a damaged cache counts as none
        return false;
    }
    if (!cached || cached->empty()) return false;
    adopt(std::move(*cached));
    return true;
}

void AccountDirectory::refreshAccountsFromMail() {
    start(Purpose::upkeep);
}

void AccountDirectory::readForFullRefresh() {
    start(Purpose::fullRefresh);
}

void AccountDirectory::cancelFullRefresh() {
    if (readingFor_ != Purpose::fullRefresh) return;
    readTask_.cancel();
    readingFor_.reset();
}

void AccountDirectory::start(Purpose purpose) {
    // The queries cost seconds on a large store, so a full refresh takes over a read that has just begun.
    const bool takesOver = readingFor_ == Purpose::upkeep && readTask_.isRunning();
    readingFor_ = purpose;
    if (takesOver) return;
    const auto priority = purpose == Purpose::upkeep ? TaskPriority::utility : TaskPriority::userInitiated;
    readTask_.startReporting<FoundAccounts>(
        priority, ReadJob{cache_, mailStoreOf(context_), upkeepMailStoreOf(context_)}, &readAndAnalyze,
        [this](FoundAccounts found) { onAccountsRead(std::move(found)); },
        [this](std::vector<MailAccount> withNotes) {
            availableAccounts_ = std::move(withNotes);
            Q_EMIT accountsChanged();
        });
}

void AccountDirectory::onAccountsRead(FoundAccounts found) {
    const Purpose purpose = std::exchange(readingFor_, std::nullopt).value_or(Purpose::upkeep);
    if (!found.accounts.empty()) {
        adopt(std::move(found.accounts));
        if (purpose == Purpose::fullRefresh) Q_EMIT fullRefreshFoundAccounts();
        return;
    }
    if (purpose == Purpose::fullRefresh && found.isAnswer) {
        availableAccounts_.clear();
        Q_EMIT accountsChanged();
    }
    setLoadFailure(found.emptyMessage);
    if (purpose == Purpose::fullRefresh) {
        Q_EMIT fullRefreshFoundNone(QString::fromStdString(
            found.emptyMessage.empty() ? "没有找到可读取的 Mail 邮箱。" : found.emptyMessage));
    }
}

void AccountDirectory::adopt(std::vector<MailAccount> accounts) {
    setLoadFailure(std::nullopt);
    availableAccounts_ = std::move(accounts);
    keepSelectionWithinAccounts();
    Q_EMIT accountsChanged();
}

void AccountDirectory::setLoadFailure(std::optional<std::string> message) {
    loadFailure_ = std::move(message);
    Q_EMIT loadFailureChanged();
}

void AccountDirectory::keepSelectionWithinAccounts() {
    std::set<std::string> kept;
    for (const MailAccount& account : availableAccounts_) {
        if (selectedPrefixes_.contains(account.urlPrefix)) kept.insert(account.urlPrefix);
    }
    setSelectedAccountPrefixes(std::move(kept));
}

} // namespace corvane
