// What the user has put together into named groups: accounts by their keys, and mail by the addresses in it.
// The rules travel as one flat table of texts, in three kinds of entries: a base key, "email:" and an
// address, "inferred:" and an address, each with the group's name. Pure functions, any thread.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "records/values.h"

namespace corvane {

using ArchiveAccountMergeRules = std::map<std::string, std::string, std::less<>>;

inline constexpr std::string_view userGroupPrefix = "usergroup:";
inline constexpr std::string_view emailRulePrefix = "email:";
inline constexpr std::string_view inferredRulePrefix = "inferred:";

// One group as the user edits it.
struct ArchiveAddressCollectionEdit {
    Uuid id;
    std::string title; // the group's name
    std::vector<std::string> baseKeys{};
    std::vector<std::string> addresses{};

    friend bool operator==(const ArchiveAddressCollectionEdit&,
                           const ArchiveAddressCollectionEdit&) = default;
};

// What the rules hold of a group: its base keys and its addresses, in the order of their keys.
ArchiveAddressCollectionEdit addressCollection(const ArchiveAccountMergeRules& rules,
                                               std::string_view groupName);

// Makes the group of these base keys and addresses. The addresses that the base keys' earlier groups and a
// group of this name had no longer count. Returns the group's key; nullopt, without effect, for a blank name.
std::optional<std::string> setArchiveAccountAddressCollection(ArchiveAccountMergeRules& rules,
                                                              std::span<const std::string> baseKeys,
                                                              std::span<const std::string> addresses,
                                                              std::string_view displayName);

// Makes the group as it is after an edit: the rules of `formerName` go first, so that what was taken out of
// it is in no group. An empty one is that of a new group. The rest is as above.
std::optional<std::string> replaceArchiveAccountGroup(ArchiveAccountMergeRules& rules,
                                                      std::string_view formerName,
                                                      const ArchiveAddressCollectionEdit& edit);

// Drops every rule of the group, of whatever kind. Returns how many there were.
std::size_t removeArchiveAccountGroup(ArchiveAccountMergeRules& rules, std::string_view groupName);

// Trimmed, in lower case, each once in the order of its first place; what has no "@" is left out.
std::vector<std::string> normalizedArchiveEmailAddresses(std::span<const std::string> values);

// The address of "name <address>", or the text itself where it is one, in lower case; nullopt for a text
// without "@" that has no angle brackets.
std::optional<std::string> extractEmailAddress(std::string_view text);

} // namespace corvane
