#include "library/accounts/account_merge_rules.h"

#include <algorithm>
#include <set>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "records/name_and_address.h"
#include "text/case.h"
#include "text/trim.h"

namespace corvane {

ArchiveAddressCollectionEdit addressCollection(const ArchiveAccountMergeRules& rules,
                                               std::string_view groupName) {
    ArchiveAddressCollectionEdit edit{.id = Uuid::random(), .title = std::string(groupName)};
    for (const auto& [key, name] : rules) {
        if (name != groupName || key.starts_with(inferredRulePrefix)) continue;
        if (key.starts_with(emailRulePrefix)) {
            edit.addresses.push_back(key.substr(emailRulePrefix.size()));
        } else {
            edit.baseKeys.push_back(key);
        }
    }
    return edit;
}

std::optional<std::string> setArchiveAccountAddressCollection(ArchiveAccountMergeRules& rules,
                                                              std::span<const std::string> baseKeys,
                                                              std::span<const std::string> addresses,
                                                              std::string_view displayName) {
    std::string name(text::trimWhitespaceAndNewlines(displayName));
    if (name.empty()) return std::nullopt;
    std::set<std::string, std::less<>> names = {name};
    for (const std::string& key : baseKeys) {
        if (const auto rule = rules.find(key); rule != rules.end()) names.insert(rule->second);
    }
    std::erase_if(rules, [&](const auto& rule) {
        return rule.first.starts_with(emailRulePrefix) && names.contains(rule.second);
    });
    for (const std::string& key : baseKeys) {
        if (!key.empty()) rules.insert_or_assign(key, name);
    }
    for (const std::string& address : normalizedArchiveEmailAddresses(addresses)) {
        rules.insert_or_assign(fmt::format("{}{}", emailRulePrefix, address), name);
        rules.insert_or_assign(fmt::format("{}{}", inferredRulePrefix, address), name);
    }
    return fmt::format("{}{}", userGroupPrefix, name);
}

std::optional<std::string> replaceArchiveAccountGroup(ArchiveAccountMergeRules& rules,
                                                      std::string_view formerName,
                                                      const ArchiveAddressCollectionEdit& edit) {
    ArchiveAccountMergeRules changed = rules;
    if (!formerName.empty()) removeArchiveAccountGroup(changed, formerName);
    auto key = setArchiveAccountAddressCollection(changed, edit.baseKeys, edit.addresses, edit.title);
    if (key) rules = std::move(changed);
    return key;
}

std::size_t removeArchiveAccountGroup(ArchiveAccountMergeRules& rules, std::string_view groupName) {
    return std::erase_if(rules, [&](const auto& rule) { return rule.second == groupName; });
}

std::vector<std::string> normalizedArchiveEmailAddresses(std::span<const std::string> values) {
    std::vector<std::string> addresses;
    std::unordered_set<std::string> seen;
    for (const std::string& value : values) {
        std::string address = text::lowercased(text::trimWhitespaceAndNewlines(value));
        if (address.find('@') == std::string::npos || !seen.insert(address).second) continue;
        addresses.push_back(std::move(address));
    }
    return addresses;
}

std::optional<std::string> extractEmailAddress(std::string_view text) {
    if (const auto parts = nameAndAddress(text)) return text::lowercased(text::trimBlanks(parts->address));
    if (text.find('@') == std::string_view::npos) return std::nullopt;
    return text::lowercased(text::trimBlanks(text));
}

} // namespace corvane
