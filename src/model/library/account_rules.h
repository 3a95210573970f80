// The groups into which the user has put accounts and addresses, as the settings keep them. Main thread.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <QObject>
#include <QString>

#include "library/accounts/account_merge_rules.h"
#include "model/model_context.h"

namespace corvane {

class AccountRules : public QObject {
    Q_OBJECT

  public:
    // Reads the settings; what isn't a table of texts there counts as no rules.
    explicit AccountRules(ModelContext& context, QObject* parent = nullptr);

    [[nodiscard]] const ArchiveAccountMergeRules& archiveAccountMergeRules() const { return rules_; }

    // Makes the group of these base keys and addresses, stores it, and emits `collectionMade`. Returns its
    // key; nullopt, without effect, for a blank name.
    std::optional<std::string> setArchiveAccountAddressCollection(std::span<const std::string> baseKeys,
                                                                  std::span<const std::string> addresses,
                                                                  std::string_view displayName);

    // The same for a group that was called `formerName`, which is as `edit` says from here on.
    std::optional<std::string> replaceArchiveAccountGroup(std::string_view formerName,
                                                          const ArchiveAddressCollectionEdit& edit);

    // Drops every rule of the group. Returns how many there were.
    std::size_t removeArchiveAccountGroup(std::string_view groupName);

    // Replaces and stores all of them, as they come out of a backup.
    void setArchiveAccountMergeRules(ArchiveAccountMergeRules rules);

  Q_SIGNALS:
    void rulesChanged();
    // Behind rulesChanged.
    void collectionMade(const QString& groupKey);

  private:
    ModelContext& context_;
    ArchiveAccountMergeRules rules_;
};

} // namespace corvane
