#include "library/accounts/account_scopes.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "records/texts/account_texts.h"
#include "text/case.h"
#include "text/charsets/encoding.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane {

namespace {

bool hasName(const ArchivedEmailRecord& record) {
    return record.accountName && !record.accountName->empty();
}

std::string lowerDisplayName(std::string_view mailbox) {
    return text::lowercased(mailboxDisplayName(mailbox));
}

std::string lowerRawName(std::string_view mailbox) {
    return text::lowercased(text::trimWhitespaceAndNewlines(mailbox));
}

std::string addressesOf(const ArchivedEmailRecord& record) {
    return text::lowercased(fmt::format("{} {}", record.sender, record.recipients));
}

std::string addressLabel(const MailAccount& account) {
    if (account.linkedAccountEmail) return *account.linkedAccountEmail;
    return account.emailAddress.find('@') == std::string::npos ? std::string() : account.emailAddress;
}

std::vector<std::string> addressLabels(const std::vector<MailAccount>& accounts) {
    std::vector<std::string> labels;
    labels.reserve(accounts.size());
    for (const MailAccount& account : accounts) labels.push_back(addressLabel(account));
    return labels;
}

std::vector<std::string> lowercasedAll(std::vector<std::string> texts) {
    for (std::string& text : texts) text = text::lowercased(text);
    return texts;
}

// The addresses of rules that name a group, and the groups, both in the order of the rules.
std::pair<std::vector<std::string>, std::vector<std::string>>
groupedAddresses(const ArchiveAccountMergeRules& rules) {
    std::pair<std::vector<std::string>, std::vector<std::string>> found;
    for (const auto& [key, name] : rules) {
        if (!key.starts_with(emailRulePrefix) || key.size() == emailRulePrefix.size() || name.empty())
            continue;
        found.first.push_back(key.substr(emailRulePrefix.size()));
        found.second.push_back(name);
    }
    return found;
}

ArchiveAccountScope groupScope(std::string_view name) {
    return {fmt::format("{}{}", userGroupPrefix, name), std::string(name)};
}

void addOnce(std::vector<std::size_t>& accounts, std::size_t account) {
    if (accounts.empty() || accounts.back() != account) accounts.push_back(account);
}

// The one account that fits; `none` when there is no or a second one.
template <class Fits>
std::size_t onlyOne(const std::vector<std::size_t>& accounts, std::size_t none, const Fits& fits) {
    std::size_t only = none;
    for (const std::size_t account : accounts) {
        if (!fits(account)) continue;
        if (only != none) return none;
        only = account;
    }
    return only;
}

} // namespace

std::string ArchiveAccountScope::canonicalKey(std::string_view label) {
    const std::string lower = text::lowercased(text::trimWhitespaceAndNewlines(label));
    return lower.empty() ? std::string(unclassifiedAccountKey) : "mail-account:" + lower;
}

std::string mailboxDisplayName(std::string_view mailbox) {
    const auto decoded = text::percentDecoded(mailbox);
    return text::replacingAll(decoded ? std::string_view(*decoded) : mailbox, ".mbox", "");
}

ArchiveAccountScopes::ArchiveAccountScopes(const std::vector<MailAccount>& accounts,
                                           const ArchiveAccountMergeRules& rules)
  : accounts_(accounts)
  , rules_(rules)
  , labels_(addressLabels(accounts))
  , lowerLabels_(lowercasedAll(labels_))
  , groupsOfAddresses_(groupedAddresses(rules).second)
  , groupAddresses_(groupedAddresses(rules).first) {
    for (std::size_t account = 0; account < accounts_.size(); ++account) {
        for (const FolderInfo& folder : accounts_[account].folders) {
            addOnce(folders_.byDisplayName[lowerDisplayName(folder.name)], account);
            addOnce(folders_.byRawName[lowerRawName(folder.name)], account);
        }
    }
}

ArchiveAccountScope ArchiveAccountScopes::keyAndTitle(const ArchivedEmailRecord& record) const {
    if (hasName(record))
        return {ArchiveAccountScope::canonicalKey(*record.accountName), record.accountName->str()};
    return scopeOf(sourceOf(record, ownersOf(record.mailbox)));
}

std::optional<ArchiveAccountScope>
ArchiveAccountScopes::externalArchiveFolderOwner(const ArchivedEmailRecord& record) const {
    if (hasName(record) && !text::trimWhitespaceAndNewlines(*record.accountName).empty()) return std::nullopt;
    const std::size_t owner = ownersOf(record.mailbox).localStore;
    if (owner == noAccount) return std::nullopt;
    return distinguishedScope(owner);
}

ArchiveAccountScope ArchiveAccountScopes::archiveAccountScope(const ArchivedEmailRecord& record) const {
    ArchiveAccountScope base = keyAndTitle(record);
    if (auto group = archiveAccountScopeIfCustomized(base.key)) return *std::move(group);
    if (isSettled(base)) return base;
    const auto name = archiveAccountGroupName(record);
    return name ? groupScope(*name) : base;
}

std::optional<ArchiveAccountScope>
ArchiveAccountScopes::archiveAccountScopeIfCustomized(std::string_view baseKey) const {
    const auto rule = rules_.find(baseKey);
    if (rule == rules_.end() || rule->second.empty()) return std::nullopt;
    return groupScope(rule->second);
}

std::optional<std::string>
ArchiveAccountScopes::archiveAccountGroupName(const ArchivedEmailRecord& record) const {
    if (groupAddresses_.empty()) return std::nullopt;
    const auto found = groupAddresses_.first(addressesOf(record));
    return found ? std::optional(groupsOfAddresses_[*found]) : std::nullopt;
}

bool ArchiveAccountScopes::isSettled(const ArchiveAccountScope& base) const {
    return groupAddresses_.empty() || base.title.find(localStoreTitle) != std::string::npos;
}

ArchiveAccountScopes::FolderOwners ArchiveAccountScopes::ownersOf(std::string_view mailbox) const {
    std::vector<std::size_t> accounts;
    if (const auto known = folders_.byDisplayName.find(lowerDisplayName(mailbox));
        known != folders_.byDisplayName.end())
        accounts = known->second;
    if (const auto known = folders_.byRawName.find(lowerRawName(mailbox)); known != folders_.byRawName.end())
        accounts.insert(accounts.end(), known->second.begin(), known->second.end());
    std::ranges::sort(accounts);
    const auto repeated = std::ranges::unique(accounts);
    accounts.erase(repeated.begin(), repeated.end());
    const auto isLinked = [&](std::size_t account) {
        return accounts_[account].linkedAccountEmail.has_value();
    };
    FolderOwners owners;
    owners.localStore = onlyOne(accounts, noAccount, [&](std::size_t account) {
        return accounts_[account].isLocalStore && isLinked(account);
    });
    owners.single = onlyOne(accounts, noAccount, isLinked);
    if (owners.single == noAccount)
        owners.single = onlyOne(accounts, noAccount, [](std::size_t) { return true; });
    return owners;
}

ArchiveAccountScopes::Source ArchiveAccountScopes::sourceOf(const ArchivedEmailRecord& record,
                                                            const FolderOwners& owners) const {
    if (owners.localStore != noAccount) return {.account = owners.localStore};
    if (!lowerLabels_.empty()) {
        if (const auto account = lowerLabels_.first(addressesOf(record)))
            return {.account = *account, .byAddress = true};
    }
    return {.account = owners.single};
}

ArchiveAccountScope ArchiveAccountScopes::scopeOf(const Source& source) const {
    if (source.account == noAccount) return {unclassifiedAccountKey, std::string(unclassifiedScopeTitle)};
    if (!source.byAddress) return distinguishedScope(source.account);
    const std::string& label = labels_[source.account];
    return {ArchiveAccountScope::canonicalKey(label), label};
}

ArchiveAccountScope ArchiveAccountScopes::distinguishedScope(std::size_t account) const {
    std::string label = accounts_[account].distinguishedLabel();
    std::string key = ArchiveAccountScope::canonicalKey(label);
    return {std::move(key), std::move(label)};
}

std::uint32_t AccountScopeTable::numberOf(const ArchivedEmailRecord& record) {
    const Base base = baseOf(record);
    if (base.isSettled) return base.number;
    const auto name = scopes_.archiveAccountGroupName(record);
    if (!name) return base.number;
    const auto [group, isNew] = groups_.try_emplace(*name);
    if (isNew) group->second = add(groupScope(*name));
    return group->second;
}

AccountScopeTable::Base AccountScopeTable::baseOf(const ArchivedEmailRecord& record) {
    if (hasName(record)) {
        const auto [known, isNew] = baseByName_.try_emplace(record.accountName->view());
        if (isNew) known->second = makeBase(scopes_.keyAndTitle(record));
        return known->second;
    }
    const auto [owners, isNewMailbox] = ownersByMailbox_.try_emplace(record.mailbox.view());
    if (isNewMailbox) owners->second = scopes_.ownersOf(record.mailbox);
    const ArchiveAccountScopes::Source source = scopes_.sourceOf(record, owners->second);
    const std::uint64_t key = static_cast<std::uint64_t>(source.account) << 1 | (source.byAddress ? 1 : 0);
    const auto [known, isNew] = baseBySource_.try_emplace(key);
    if (isNew) known->second = makeBase(scopes_.scopeOf(source));
    return known->second;
}

AccountScopeTable::Base AccountScopeTable::makeBase(const ArchiveAccountScope& scope) {
    if (const auto group = scopes_.archiveAccountScopeIfCustomized(scope.key))
        return {.number = add(*group), .isSettled = true};
    return {.number = add(scope), .isSettled = scopes_.isSettled(scope)};
}

std::uint32_t AccountScopeTable::add(const ArchiveAccountScope& scope) {
    const auto next = static_cast<std::uint32_t>(all_.size());
    const auto [known, isNew] = numbers_.try_emplace(fmt::format("{}\x01{}", scope.key, scope.title), next);
    if (isNew) all_.push_back(scope);
    return known->second;
}

} // namespace corvane
