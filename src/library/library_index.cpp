#include "library/library_index.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include "library/threads/subject_key.h"
#include "records/archived/counted_bytes.h"

namespace corvane {

namespace {

const char* kindName(ArchiveLocation::Kind kind) {
    switch (kind) {
    case ArchiveLocation::Kind::cloud:
        return "cloud";
    case ArchiveLocation::Kind::removable:
        return "removable";
    case ArchiveLocation::Kind::local:
        break;
    }
    return "local";
}

// Texts one after the other with "|" between them.
class JoinedTexts {
  public:
    template <class... Parts>
    void add(const Parts&... parts) {
        if (!isFirst_) joined_.push_back('|');
        isFirst_ = false;
        (joined_.append(parts), ...);
    }

    [[nodiscard]] const std::string& text() const { return joined_; }

  private:
    std::string joined_;
    bool isFirst_ = true;
};

std::string joinedPrefixes(const std::vector<MailAccount>& accounts) {
    JoinedTexts texts;
    for (const MailAccount& account : accounts) texts.add(account.urlPrefix);
    return texts.text();
}

std::string joinedRules(const ArchiveAccountMergeRules& rules) {
    JoinedTexts texts;
    for (const auto& [key, name] : rules) texts.add(key, "=", name);
    return texts.text();
}

std::string joinedLocations(const std::vector<ArchiveLocation>& locations) {
    std::vector<const ArchiveLocation*> sorted;
    sorted.reserve(locations.size());
    for (const ArchiveLocation& location : locations) sorted.push_back(&location);
    std::ranges::stable_sort(sorted, {}, &ArchiveLocation::rootPath);
    JoinedTexts texts;
    for (const ArchiveLocation* location : sorted) {
        texts.add(location->rootPath, "=", location->displayName, ":", kindName(location->kind), ":",
                  location->isConnected ? "true" : "false");
    }
    return texts.text();
}

} // namespace

std::string archiveLibraryIndexSignature(const LibraryIndexInput& input) {
    const std::vector<ArchivedEntry>& entries = *input.entries;
    return fmt::format("derived-v4|{}|{}|{}|{}|{}|{}", entries.size(),
                       entries.empty() ? std::string() : entries.front().id(),
                       entries.empty() ? std::string() : entries.back().id(),
                       joinedPrefixes(input.availableAccounts), joinedRules(input.archiveAccountMergeRules),
                       joinedLocations(input.archiveLocations));
}

ArchiveLibraryIndex::ArchiveLibraryIndex(LibraryIndexInput input)
  : input_(std::move(input))
  , signature_(archiveLibraryIndexSignature(input_)) {}

SharedLibraryIndex ArchiveLibraryIndex::make(LibraryIndexInput input, const std::stop_token& stop) {
    if (input.entries->size() >= std::numeric_limits<EntryPosition>::max())
        throw std::length_error("ArchiveLibraryIndex");
    // The constructor is private.
    const std::shared_ptr<ArchiveLibraryIndex> index(new ArchiveLibraryIndex(std::move(input)));
    return index->fill(stop) ? index : nullptr;
}

bool ArchiveLibraryIndex::fill(const std::stop_token& stop) {
    findAccounts();
    if (stop.stop_requested()) return false;
    findThreads(stop);
    if (stop.stop_requested()) return false;
    sortByDate();
    for (OrderedList* ordered : {&newest_, &oldest_}) {
        if (stop.stop_requested()) return false;
        divide(*ordered);
    }
    findPositions();
    accountOptions_ = corvane::accountOptions(newest_.all, accountOf_, accounts_);
    locationOptions_ = corvane::locationOptions(newest_.all, entries(), input_.archiveLocations);
    for (const ArchivedEntry& entry : entries()) totalBytes_ += countedBytes(entry.record);
    return !stop.stop_requested();
}

void ArchiveLibraryIndex::findAccounts() {
    const ArchiveAccountScopes scopes(input_.availableAccounts, input_.archiveAccountMergeRules);
    AccountScopeTable table(scopes);
    std::vector<std::uint32_t> scopeOf;
    scopeOf.reserve(size());
    for (const ArchivedEntry& entry : entries()) scopeOf.push_back(table.numberOf(entry.record));
    mergeTitles(table.all(), scopeOf);
}

// Names that differ in case only are one account; the title of its last entry stands.
void ArchiveLibraryIndex::mergeTitles(const std::vector<ArchiveAccountScope>& scopes,
                                      const std::vector<std::uint32_t>& scopeOf) {
    const auto keyAt = [this](std::uint32_t account) { return std::string_view(accounts_[account].key); };
    std::vector<std::uint32_t> accountOfScope;
    accountOfScope.reserve(scopes.size());
    for (const ArchiveAccountScope& scope : scopes) {
        const auto next = static_cast<std::uint32_t>(accounts_.size());
        const auto [account, isNew] = accountByKey_.insert(scope.key, next, keyAt);
        if (isNew) accounts_.push_back(scope);
        accountOfScope.push_back(account);
    }
    accountOf_.reserve(scopeOf.size());
    std::vector<std::uint32_t> lastScope(accounts_.size());
    for (const std::uint32_t scope : scopeOf) {
        accountOf_.push_back(accountOfScope[scope]);
        lastScope[accountOfScope[scope]] = scope;
    }
    for (std::size_t account = 0; account < accounts_.size(); ++account)
        accounts_[account].title = scopes[lastScope[account]].title;
}

void ArchiveLibraryIndex::findThreads(const std::stop_token& stop) {
    roots_ = corvane::threadRoots(entries(), stop);
    isThread_.assign(roots_.size(), false);
    for (EntryPosition position = 0; position < roots_.size(); ++position) {
        if (roots_[position] != position) isThread_[roots_[position]] = true;
    }
}

void ArchiveLibraryIndex::findPositions() {
    positionByID_.reserve(size());
    for (EntryPosition position = 0; position < size(); ++position)
        positionByID_.insert(entryID(position), position,
                             [this](EntryPosition known) { return entryID(known); });
}

void ArchiveLibraryIndex::sortByDate() {
    struct Dated {
        Date date;
        EntryPosition position;
    };

    std::vector<Dated> dated;
    dated.reserve(size());
    for (EntryPosition position = 0; position < size(); ++position)
        dated.push_back({entry(position).record.date.value_or(Date::min()), position});
    std::ranges::stable_sort(dated, std::greater<>(), &Dated::date);
    newest_.all.reserve(size());
    for (const Dated& each : dated) newest_.all.push_back(each.position);
    oldest_.all.assign(newest_.all.rbegin(), newest_.all.rend());
}

void ArchiveLibraryIndex::divide(OrderedList& ordered) const {
    std::vector<std::uint32_t> starts(accounts_.size() + 1);
    for (const std::uint32_t account : accountOf_) ++starts[account + 1];
    for (std::size_t account = 0; account < accounts_.size(); ++account)
        starts[account + 1] += starts[account];
    ordered.accountStarts = starts;
    std::vector<std::uint32_t> next = starts;
    ordered.byAccount.resize(ordered.all.size());
    for (const EntryPosition position : ordered.all)
        ordered.byAccount[next[accountOf_[position]]++] = position;

    SubjectGrouper grouper(entries(), roots_);
    grouper.append(ordered.all, ordered.groups);
    const std::span<const EntryPosition> byAccount = ordered.byAccount;
    for (std::size_t account = 0; account < accounts_.size(); ++account) {
        ordered.groupStarts.push_back(static_cast<std::uint32_t>(ordered.groupsByAccount.groups.size()));
        grouper.append(byAccount.subspan(starts[account], starts[account + 1] - starts[account]),
                       ordered.groupsByAccount);
    }
    ordered.groupStarts.push_back(static_cast<std::uint32_t>(ordered.groupsByAccount.groups.size()));
}

std::optional<std::uint32_t> ArchiveLibraryIndex::accountNumber(std::string_view key) const {
    return accountByKey_.position(
        key, [this](std::uint32_t account) { return std::string_view(accounts_[account].key); });
}

std::span<const EntryPosition> ArchiveLibraryIndex::sortedOfAccount(LibraryOrder order,
                                                                    std::string_view key) const {
    const auto account = accountNumber(key);
    if (!account) return {};
    const OrderedList& ordered = list(order);
    const std::uint32_t start = ordered.accountStarts[*account];
    return std::span(ordered.byAccount).subspan(start, ordered.accountStarts[*account + 1] - start);
}

GroupsView ArchiveLibraryIndex::subjectGroups(LibraryOrder order) const {
    const SubjectGroups& groups = list(order).groups;
    return {groups.groups, groups.members};
}

GroupsView ArchiveLibraryIndex::subjectGroupsOfAccount(LibraryOrder order, std::string_view key) const {
    const auto account = accountNumber(key);
    if (!account) return {};
    const OrderedList& ordered = list(order);
    const std::uint32_t start = ordered.groupStarts[*account];
    return {
        std::span(ordered.groupsByAccount.groups).subspan(start, ordered.groupStarts[*account + 1] - start),
        ordered.groupsByAccount.members};
}

std::optional<std::string> ArchiveLibraryIndex::accountTitle(std::string_view key) const {
    const auto account = accountNumber(key);
    return account ? std::optional(accounts_[*account].title) : std::nullopt;
}

std::string ArchiveLibraryIndex::subjectKey(EntryPosition position) const {
    return normalizedSubjectKey(entry(position).record.subject, entryID(position));
}

std::string ArchiveLibraryIndex::threadKey(EntryPosition position) const {
    const EntryPosition root = roots_[position];
    return fmt::format("{}:{}", isThread_[root] ? "thread" : "single", entryID(root));
}

std::optional<EntryPosition> ArchiveLibraryIndex::position(std::string_view entryID) const {
    return positionByID_.position(entryID, [this](EntryPosition known) { return this->entryID(known); });
}

} // namespace corvane
