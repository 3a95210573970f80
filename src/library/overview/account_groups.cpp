#include "library/overview/account_groups.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "records/archived/counted_bytes.h"
#include "text/case.h"
#include "text/collation.h"
#include "text/trim.h"

namespace corvane {

namespace {

using MailboxGroup = ArchiveAccountGroup::MailboxGroup;

// Counts and bytes by mailbox.
class MailboxSums {
  public:
    void add(const ArchivedEmailRecord& record) {
        const auto [known, isNew] = places_.try_emplace(record.mailbox.view(), groups_.size());
        if (isNew) groups_.push_back({.mailbox = record.mailbox.str()});
        MailboxGroup& group = groups_[known->second];
        group.count += 1;
        group.bytes += countedBytes(record);
    }

    [[nodiscard]] std::vector<MailboxGroup> sorted() const {
        std::vector<MailboxGroup> groups = groups_;
        std::ranges::sort(groups, {}, [](const MailboxGroup& group) {
            return std::tuple(-group.count, std::string_view(group.mailbox));
        });
        return groups;
    }

  private:
    std::vector<MailboxGroup> groups_;
    std::unordered_map<std::string_view, std::size_t> places_;
};

struct BaseInMaking {
    ArchiveAccountGroup::BaseAccount account;
    MailboxSums mailboxes;
};

// One group of the user: which base accounts its entries come from.
class BaseAccounts {
  public:
    explicit BaseAccounts(const ArchiveAccountScopes& scopes)
      : scopes_(scopes) {}

    void add(const ArchivedEmailRecord& record, const std::string& groupKey) {
        const ArchiveAccountScope base = scopes_.keyAndTitle(record);
        const auto group = scopes_.archiveAccountScopeIfCustomized(base.key);
        if (!group || group->key != groupKey) {
            direct_.add(record);
            return;
        }
        BaseInMaking& making = accounts_[base.key];
        making.account.key = base.key;
        making.account.title = base.title;
        making.account.count += 1;
        making.account.bytes += countedBytes(record);
        making.mailboxes.add(record);
    }

    void finish(ArchiveAccountGroup& group) {
        group.directMailboxes = direct_.sorted();
        for (auto& [key, making] : accounts_) {
            making.account.mailboxes = making.mailboxes.sorted();
            group.baseAccounts.push_back(std::move(making.account));
        }
        std::ranges::sort(group.baseAccounts, {}, [](const ArchiveAccountGroup::BaseAccount& account) {
            return std::tuple(-account.count, std::string_view(account.title), std::string_view(account.key));
        });
    }

  private:
    const ArchiveAccountScopes& scopes_;
    MailboxSums direct_;
    std::map<std::string, BaseInMaking> accounts_;
};

ArchiveAccountGroup groupOf(const ArchiveLibraryIndex& index, const ArchiveAccountScopes& scopes,
                            const LibraryAccountFilterOption& option) {
    ArchiveAccountGroup group{.key = option.key, .title = option.title, .count = option.count};
    const bool isUserGroup = option.key.starts_with(userGroupPrefix);
    MailboxSums mailboxes;
    BaseAccounts bases(scopes);
    for (const EntryPosition position : index.sortedOfAccount(LibraryOrder::newestFirst, option.key)) {
        const ArchivedEmailRecord& record = index.entry(position).record;
        group.bytes += countedBytes(record);
        mailboxes.add(record);
        if (isUserGroup) bases.add(record, option.key);
    }
    group.mailboxes = mailboxes.sorted();
    if (isUserGroup) {
        bases.finish(group);
    } else {
        group.directMailboxes = group.mailboxes;
    }
    return group;
}

// The keys that lead from a known account to a group: that of its label, and what the rules make of it and of
// its address. Addresses don't draw local stores into a group.
std::vector<std::string> groupKeysOf(const MailAccount& account, const ArchiveAccountMergeRules& rules) {
    std::vector<std::string> keys = {ArchiveAccountScope::canonicalKey(account.distinguishedLabel())};
    const auto addGroup = [&](const std::string& ruleKey) {
        const auto rule = rules.find(ruleKey);
        if (rule != rules.end() && !rule->second.empty())
            keys.push_back(std::string(userGroupPrefix) + rule->second);
    };
    addGroup(std::string(keys.front()));
    if (account.isLocalStore) return keys;
    const std::string address = text::lowercased(
        text::trimWhitespaceAndNewlines(account.linkedAccountEmail.value_or(account.emailAddress)));
    addGroup(std::string(emailRulePrefix) + address);
    return keys;
}

std::string comparable(std::string_view name) {
    return text::canonicallyComposed(text::lowercased(text::trimWhitespaceAndNewlines(name)));
}

// An account as it was read with the list, as Mail has it now, or both.
struct AccountNames {
    std::string_view key;
    const MailAccount* known = nullptr;
    const AccountInMail* inMail = nullptr;

    [[nodiscard]] bool isLocalStore() const { return known != nullptr && known->isLocalStore; }

    // Nothing tells how Mail shows it, so it may be by any name.
    [[nodiscard]] bool isNameless() const {
        if (inMail == nullptr || !inMail->shownName.empty()) return false;
        return known == nullptr || (!known->isLocalStore && !known->emailAddress.contains('@'));
    }
};

// The known ones in their order, then those that Mail has had since.
std::vector<AccountNames> joined(const std::vector<MailAccount>& knownAccounts,
                                 const std::vector<AccountInMail>& inMail) {
    std::vector<AccountNames> accounts;
    for (const MailAccount& account : knownAccounts)
        accounts.push_back({account.urlPrefix, &account, nullptr});
    for (const AccountInMail& account : inMail) {
        const auto known = std::ranges::find(accounts, account.urlPrefix, &AccountNames::key);
        if (known != accounts.end())
            known->inMail = &account;
        else
            accounts.push_back({account.urlPrefix, nullptr, &account});
    }
    return accounts;
}

MailName nameOf(const AccountNames& account, const ArchiveAccountScope& group) {
    std::string label = account.known != nullptr ? account.known->distinguishedLabel() : group.title;
    if (ArchiveAccountScope::canonicalKey(label) == group.key) label = group.title;
    const bool isShownOtherwise = account.inMail != nullptr && !account.isLocalStore() &&
                                  comparable(account.inMail->shownName) != comparable(label);
    return {.label = std::move(label),
            .inMail = isShownOtherwise ? account.inMail->shownName : std::string()};
}

// Somebody who looks for this text in Mail may choose the account: by what Mail shows, by our label, by its
// address, or by that with a remark of ours behind it.
bool mayBeNamed(const AccountNames& account, const std::string& looked) {
    if (looked.empty()) return false;
    if (account.isNameless()) return true;
    std::vector<std::string> addresses;
    if (account.known != nullptr) {
        if (looked == comparable(account.known->distinguishedLabel())) return true;
        addresses.push_back(comparable(account.known->emailAddress));
    }
    if (account.isLocalStore()) return false;
    if (account.inMail != nullptr) {
        addresses.push_back(comparable(account.inMail->shownName));
        addresses.push_back(comparable(account.inMail->address));
    }
    return std::ranges::any_of(addresses, [&](const std::string& address) {
        return !address.empty() && (looked == address || looked.starts_with(address + "（") ||
                                    looked.starts_with(address + " ("));
    });
}

} // namespace

MailNames mailNamesOf(const ArchiveAccountScope& group, const MailAccountKeys& mailAccounts,
                      const std::vector<MailAccount>& knownAccounts,
                      const std::vector<AccountInMail>& inMail) {
    const std::vector<AccountNames> accounts = joined(knownAccounts, inMail);
    // Of what Mail has no mail any more there is nothing to choose.
    const auto isThere = [&](const AccountNames& account) {
        return mailAccounts.contains(account.key) && (account.inMail != nullptr || inMail.empty());
    };
    const auto isOwn = [&](const AccountNames& account) {
        return isThere(account) && account.known != nullptr &&
               ArchiveAccountScope::canonicalKey(account.known->distinguishedLabel()) == group.key;
    };
    const bool hasOwn = std::ranges::any_of(accounts, isOwn);
    MailNames result;
    for (const AccountNames& account : accounts) {
        if (hasOwn ? !isOwn(account) : !isThere(account)) continue;
        result.isNameUnknown = result.isNameUnknown || account.isNameless();
        MailName name = nameOf(account, group);
        if (std::ranges::find(result.names, name) == result.names.end())
            result.names.push_back(std::move(name));
    }
    if (result.names.empty()) result.names = {{.label = group.title, .inMail = {}}};
    for (const AccountNames& account : accounts) {
        const bool isNamed = std::ranges::any_of(result.names, [&](const MailName& name) {
            return mayBeNamed(account, comparable(name.label)) ||
                   mayBeNamed(account, comparable(name.inMail));
        });
        if (isNamed && !mailAccounts.contains(account.key)) result.namesakes.emplace(account.key);
    }
    return result;
}

std::vector<ArchiveAccountGroup> archiveAccountGroups(const ArchiveLibraryIndex& index) {
    const ArchiveAccountScopes scopes(index.input().availableAccounts,
                                      index.input().archiveAccountMergeRules);
    std::vector<ArchiveAccountGroup> groups;
    for (const LibraryAccountFilterOption& option : index.accountOptions())
        groups.push_back(groupOf(index, scopes, option));
    return groups;
}

std::vector<MailAccountKeys> mailAccountsOfGroups(const ArchiveLibraryIndex& index) {
    std::vector<MailAccountKeys> keys(index.accounts().size());
    std::vector<std::unordered_set<std::string_view>> seen(keys.size());
    for (EntryPosition position = 0; position < index.size(); ++position) {
        const auto& identifier = index.entry(position).record.accountIdentifier;
        if (!identifier || identifier->empty()) continue;
        const std::uint32_t account = index.accountOf()[position];
        if (seen[account].insert(identifier->view()).second) keys[account].insert(identifier->str());
    }
    std::map<std::string_view, std::size_t> accountByKey;
    for (std::size_t account = 0; account < keys.size(); ++account)
        accountByKey.emplace(index.accounts()[account].key, account);
    for (const MailAccount& account : index.input().availableAccounts) {
        for (const std::string& key : groupKeysOf(account, index.input().archiveAccountMergeRules)) {
            if (const auto group = accountByKey.find(key); group != accountByKey.end())
                keys[group->second].insert(account.urlPrefix);
        }
    }
    return keys;
}

} // namespace corvane
