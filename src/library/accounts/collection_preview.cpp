#include "library/accounts/collection_preview.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>
#include <unordered_map>

#include <fmt/format.h>

#include "library/accounts/account_scopes.h"
#include "library/accounts/contained_texts.h"
#include "text/case.h"

namespace corvane {

namespace {

using Mails = CollectionPreview::Mails;

// What no group of a person is called.
constexpr std::string_view nameless = "\x01";
constexpr std::size_t stopInterval = 4096;

// Sums by key, in the order in which the keys came.
class Sums {
  public:
    void add(const ArchiveAccountScope& scope, std::int64_t count, std::int64_t bytes) {
        const auto [found, isNew] = places_.try_emplace(scope.key, sums_.size());
        if (isNew) sums_.push_back({scope.key, scope.title, 0, 0});
        sums_[found->second].count += count;
        sums_[found->second].bytes += bytes;
    }

    // Most mail first.
    std::vector<Mails> sorted() {
        std::ranges::stable_sort(sums_, std::ranges::greater(), &Mails::count);
        return std::move(sums_);
    }

    // In their order.
    std::vector<Mails> all() { return std::move(sums_); }

  private:
    std::unordered_map<std::string, std::size_t> places_;
    std::vector<Mails> sums_;
};

std::string withoutPrefix(const std::string& key) {
    const std::size_t colon = key.find(':');
    return colon == std::string::npos ? std::string(unclassifiedScopeTitle) : key.substr(colon + 1);
}

// One pass over the entries, with the scopes that they have without groups, now and then.
class Count {
  public:
    explicit Count(const CollectionQuestion& question)
      : question_(question)
      , edit_(normalized(question.edit))
      , addresses_(edit_.addresses)
      , bare_(question.availableAccounts, {})
      , present_(question.availableAccounts, question.rules)
      , next_(question.availableAccounts, rulesThen())
      , formerKey_(fmt::format("{}{}", userGroupPrefix, question.formerName)) {
        for (const std::string& key : edit_.baseKeys) parts_.add({key, withoutPrefix(key)}, 0, 0);
        for (const std::string& address : edit_.addresses) parts_.add({address, address}, 0, 0);
    }

    void add(const ArchivedEmailRecord& record) {
        const ArchiveAccountScope& base = bareTable_.all()[bareTable_.numberOf(record)];
        accounts_.add(base, 1, record.sizeBytes);
        if (nextTable_.all()[nextTable_.numberOf(record)].key != nextKey_) return;
        ++preview_.count;
        preview_.bytes += record.sizeBytes;
        const ArchiveAccountScope& now = presentTable_.all()[presentTable_.numberOf(record)];
        const bool isByAccount = std::ranges::find(edit_.baseKeys, base.key) != edit_.baseKeys.end();
        parts_.add(isByAccount ? base : addressOf(record), 1, record.sizeBytes);
        const bool isTaken = now.key != formerKey_ && !(isByAccount && now.key == base.key);
        if (isTaken) sources_.add(now, 1, record.sizeBytes);
    }

    CollectionPreview result() {
        // Also what has no mail any more can be taken out of the group.
        for (const std::string& key : edit_.baseKeys) accounts_.add({key, withoutPrefix(key)}, 0, 0);
        preview_.accounts = accounts_.sorted();
        preview_.parts = parts_.all();
        preview_.sources = sources_.sorted();
        return std::move(preview_);
    }

  private:
    static ArchiveAddressCollectionEdit normalized(ArchiveAddressCollectionEdit edit) {
        edit.addresses = normalizedArchiveEmailAddresses(edit.addresses);
        return edit;
    }

    ArchiveAccountMergeRules rulesThen() {
        ArchiveAccountMergeRules rules = question_.rules;
        ArchiveAddressCollectionEdit edit = edit_;
        auto key = replaceArchiveAccountGroup(rules, question_.formerName, edit);
        if (!key) {
            edit.title = nameless;
            key = replaceArchiveAccountGroup(rules, question_.formerName, edit);
        }
        nextKey_ = key.value_or("");
        return rules;
    }

    [[nodiscard]] ArchiveAccountScope addressOf(const ArchivedEmailRecord& record) const {
        const auto found =
            addresses_.first(text::lowercased(fmt::format("{} {}", record.sender, record.recipients)));
        const std::string address = found ? edit_.addresses[*found] : std::string();
        return {address, address};
    }

    const CollectionQuestion& question_;
    ArchiveAddressCollectionEdit edit_;
    std::string nextKey_;
    ContainedTexts addresses_;
    ArchiveAccountScopes bare_;
    ArchiveAccountScopes present_;
    ArchiveAccountScopes next_;
    AccountScopeTable bareTable_{bare_};
    AccountScopeTable presentTable_{present_};
    AccountScopeTable nextTable_{next_};
    std::string formerKey_;
    Sums accounts_;
    Sums parts_;
    Sums sources_;
    CollectionPreview preview_;
};

} // namespace

std::optional<CollectionPreview> previewOfCollection(const CollectionQuestion& question,
                                                     const std::stop_token& stop) {
    Count count(question);
    std::size_t number = 0;
    for (const ArchivedEntry& entry : *question.entries) {
        if (++number % stopInterval == 0 && stop.stop_requested()) return std::nullopt;
        count.add(entry.record);
    }
    return count.result();
}

} // namespace corvane
