#include "model/library/account_rules.h"

#include <utility>

#include "records/stores/settings_keys.h"

namespace corvane {

AccountRules::AccountRules(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context) {
    const auto stored = context.settings.textMap(archiveAccountMergeRulesKey);
    if (stored) rules_.insert(stored->begin(), stored->end());
}

std::optional<std::string>
AccountRules::setArchiveAccountAddressCollection(std::span<const std::string> baseKeys,
                                                 std::span<const std::string> addresses,
                                                 std::string_view displayName) {
    ArchiveAccountMergeRules rules = rules_;
    auto key = corvane::setArchiveAccountAddressCollection(rules, baseKeys, addresses, displayName);
    if (!key) return std::nullopt;
    setArchiveAccountMergeRules(std::move(rules));
    Q_EMIT collectionMade(QString::fromStdString(*key));
    return key;
}

std::optional<std::string>
AccountRules::replaceArchiveAccountGroup(std::string_view formerName,
                                         const ArchiveAddressCollectionEdit& edit) {
    ArchiveAccountMergeRules rules = rules_;
    auto key = corvane::replaceArchiveAccountGroup(rules, formerName, edit);
    if (!key) return std::nullopt;
    setArchiveAccountMergeRules(std::move(rules));
    Q_EMIT collectionMade(QString::fromStdString(*key));
    return key;
}

std::size_t AccountRules::removeArchiveAccountGroup(std::string_view groupName) {
    ArchiveAccountMergeRules rules = rules_;
    const std::size_t removed = corvane::removeArchiveAccountGroup(rules, groupName);
    if (removed > 0) setArchiveAccountMergeRules(std::move(rules));
    return removed;
}

void AccountRules::setArchiveAccountMergeRules(ArchiveAccountMergeRules rules) {
    if (rules == rules_) return;
    rules_ = std::move(rules);
    context_.settings.setTextMap(archiveAccountMergeRulesKey, {rules_.begin(), rules_.end()});
    Q_EMIT rulesChanged();
}

} // namespace corvane
