// The accounts of the Mail store and which of them a scan covers. Main thread.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include <QObject>

#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/mail_account.h"
#include "records/stores/account_cache_store.h"

namespace corvane {

struct FoundAccounts;

// Under which a scan of the account is summed up. A local store that is linked has the name of its account.
const std::string& scannedName(const MailAccount& account);

class AccountDirectory : public QObject {
    Q_OBJECT

  public:
    explicit AccountDirectory(ModelContext& context, QObject* parent = nullptr);

    [[nodiscard]] const std::vector<MailAccount>& availableAccounts() const { return availableAccounts_; }

    [[nodiscard]] const std::optional<std::string>& accountLoadFailureMessage() const { return loadFailure_; }

    [[nodiscard]] const std::set<std::string>& selectedAccountPrefixes() const { return selectedPrefixes_; }

    // Stores the choice under its settings key.
    void setSelectedAccountPrefixes(std::set<std::string> prefixes);

    // True when accounts came from the cache of this Mail root; a damaged cache counts as none. Reads one
    // small file.
    bool loadCachedAccounts();

    // Reads the accounts from the store in the background; `accountsChanged` follows. Without any, those that
    // are known stay, and the failure's message says why.
    void refreshAccountsFromMail();

    // The same for a full refresh, which drops the known accounts when there are none; they stay when the
    // index couldn't be looked at. Emits exactly one of fullRefreshFoundAccounts, fullRefreshFoundNone,
    // unless it is cancelled.
    void readForFullRefresh();

    // Ends a read for a full refresh that hasn't found its accounts yet: neither signal follows, and the
    // known accounts stay. No effect on any other read.
    void cancelFullRefresh();

  Q_SIGNALS:
    void accountsChanged();
    void loadFailureChanged();
    void selectionChanged();
    void fullRefreshFoundAccounts();
    void fullRefreshFoundNone(const QString& message);

  private:
    enum class Purpose { upkeep, fullRefresh };

    void start(Purpose purpose);
    void onAccountsRead(FoundAccounts found);
    void adopt(std::vector<MailAccount> accounts);
    void setLoadFailure(std::optional<std::string> message);
    void keepSelectionWithinAccounts();

    ModelContext& context_;
    MailAccountCacheStore cache_;
    std::vector<MailAccount> availableAccounts_;
    std::optional<std::string> loadFailure_;
    std::set<std::string> selectedPrefixes_;
    // What the running read is for; absent once its accounts are published.
    std::optional<Purpose> readingFor_;
    TaskSlot readTask_;
};

} // namespace corvane
