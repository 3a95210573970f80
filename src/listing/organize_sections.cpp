#include "listing/organize_sections.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

#include <fmt/format.h>

#include "listing/account_titles.h"

namespace corvane {

namespace {

// No name holds it, so joined keys are unique.
constexpr char keySeparator = '\x01';

struct YearInMaking {
    OrganizeYearGroup group;
    std::unordered_map<std::string_view, std::size_t> folderOf; // by mailbox
};

struct AccountInMaking {
    OrganizeAccountTally tally;
    OrganizeAccountYearSection section;
    std::map<std::int64_t, YearInMaking> years;
};

// Undated messages go last.
std::int64_t orderOfYear(std::int64_t year) {
    return year == undatedYear ? std::numeric_limits<std::int64_t>::max() : year;
}

class OverviewMaker {
  public:
    explicit OverviewMaker(const OrganizeInput& input)
      : input_(input) {}

    void add(const MailMessageRecord& message) {
        if (!input_.locallyAvailableIDs->contains(message.id)) return;
        AccountInMaking& account = accountOf(message);
        const auto known = input_.yearByID->find(message.id);
        const std::int64_t year = known == input_.yearByID->end() ? undatedYear : known->second;
        const bool isArchived = input_.archivedMessageIDs->contains(message.id);
        OrganizeAccountTally::Year& tally = account.tally.years[year];
        tally.local += 1;
        tally.archived += isArchived ? 1 : 0;
        account.tally.localBytes += message.messageSize;
        if (!isArchived && isWithinLimits(year)) addCandidate(account, year, message);
    }

    SharedOrganizeOverview finish();

  private:
    AccountInMaking& accountOf(const MailMessageRecord& message);
    static void addCandidate(AccountInMaking& account, std::int64_t year, const MailMessageRecord& message);

    [[nodiscard]] bool isWithinLimits(std::int64_t year) const {
        return !input_.maximumYear || (year != undatedYear && year <= *input_.maximumYear);
    }

    const OrganizeInput& input_;
    std::vector<AccountInMaking> accounts_;
    std::unordered_map<std::string_view, std::size_t> positionByKey_;
};

AccountInMaking& OverviewMaker::accountOf(const MailMessageRecord& message) {
    const std::string_view key = accountFilterKey(message);
    const auto [position, isNew] = positionByKey_.try_emplace(key, accounts_.size());
    if (isNew) {
        AccountInMaking account;
        account.tally.key = account.section.key = key;
        account.tally.title = account.section.title = accountTitle(key, input_.accounts, message);
        accounts_.push_back(std::move(account));
    }
    return accounts_[position->second];
}

void OverviewMaker::addCandidate(AccountInMaking& account, std::int64_t year,
                                 const MailMessageRecord& message) {
    const auto [known, isNew] = account.years.try_emplace(year);
    YearInMaking& making = known->second;
    OrganizeYearGroup& group = making.group;
    if (isNew) {
        group.accountKey = account.section.key;
        group.year = year;
        group.key = fmt::format("{}{}{}", group.accountKey, keySeparator, year);
    }
    const auto [folder, isNewFolder] = making.folderOf.try_emplace(message.mailbox, group.folders.size());
    if (isNewFolder) {
        OrganizeFolderRow row;
        row.accountKey = group.accountKey;
        row.year = year;
        row.mailbox = message.mailbox.str();
        row.key = fmt::format("{}{}{}", group.key, keySeparator, row.mailbox);
        group.folders.push_back(std::move(row));
    }
    OrganizeFolderRow& row = group.folders[folder->second];
    row.messageIDs.push_back(message.id);
    for (auto* const sum : {&row.count, &group.count, &account.section.count}) *sum += 1;
    for (auto* const sum : {&row.bytes, &group.bytes, &account.section.bytes}) *sum += message.messageSize;
}

SharedOrganizeOverview OverviewMaker::finish() {
    auto overview = std::make_shared<OrganizeOverview>();
    overview->hasMessages = true;
    std::stable_sort(
        accounts_.begin(), accounts_.end(), [](const AccountInMaking& a, const AccountInMaking& b) {
            return a.tally.localBytes != b.tally.localBytes ? a.tally.localBytes > b.tally.localBytes
                                                            : a.tally.title < b.tally.title;
        });
    for (AccountInMaking& account : accounts_) {
        overview->accounts.push_back(std::move(account.tally));
        if (account.years.empty()) continue;
        auto& years = account.section.years;
        for (auto& [year, making] : account.years) {
            auto& folders = making.group.folders;
            std::stable_sort(folders.begin(), folders.end(), [](const auto& a, const auto& b) {
                return a.count != b.count ? a.count > b.count : a.mailbox < b.mailbox;
            });
            years.push_back(std::move(making.group));
        }
        std::stable_sort(years.begin(), years.end(), [](const auto& a, const auto& b) {
            return orderOfYear(a.year) < orderOfYear(b.year);
        });
        overview->sections.push_back(std::move(account.section));
    }
    return overview;
}

} // namespace

std::vector<SharedText> OrganizeAccountYearSection::YearGroup::messageIDs() const {
    std::vector<SharedText> ids;
    ids.reserve(static_cast<std::size_t>(count));
    for (const FolderRow& folder : folders)
        ids.insert(ids.end(), folder.messageIDs.begin(), folder.messageIDs.end());
    return ids;
}

std::int64_t OrganizeOverview::candidateCount() const {
    std::int64_t count = 0;
    for (const auto& section : sections) count += section.count;
    return count;
}

CountByYear IndexedYears::countsByYear(const std::optional<std::string>& lookedAt) const {
    if (!lookedAt && selectedAccountPrefixes.empty()) return all;
    CountByYear sums;
    for (const auto& [key, years] : byAccount) {
        if (!counts(key, lookedAt)) continue;
        for (const auto& [year, count] : years) sums[year] += count;
    }
    return sums;
}

namespace screens {

SharedOrganizeOverview computeOrganizeYearSections(const OrganizeInput& input, const std::stop_token& stop) {
    OverviewMaker maker(input);
    for (const MailMessageRecord& message : *input.messages) {
        if (stop.stop_requested()) return nullptr;
        maker.add(message);
    }
    return maker.finish();
}

SharedOrganizeOverview organizeOverviewOfStatistics(const std::vector<AccountYearStatGroup>& groups) {
    auto overview = std::make_shared<OrganizeOverview>();
    for (const AccountYearStatGroup& group : groups) {
        OrganizeAccountYearSection section{
            group.accountPrefix, group.accountName, group.messageCount, group.messageBytes, {}};
        OrganizeAccountTally tally{group.accountPrefix, group.accountName, group.messageBytes, {}};
        for (auto stat = group.years.rbegin(); stat != group.years.rend(); ++stat) {
            section.years.push_back({fmt::format("{}{}{}", section.key, keySeparator, stat->year),
                                     section.key,
                                     stat->year,
                                     stat->messageCount,
                                     stat->messageBytes,
                                     {}});
            tally.years[stat->year].local = stat->messageCount;
        }
        overview->sections.push_back(std::move(section));
        overview->accounts.push_back(std::move(tally));
    }
    return overview;
}

DeletionSafety deletionSafetyOf(const OrganizeOverview& overview,
                                const std::optional<std::string>& accountKey,
                                const std::set<std::int64_t>& years, const IndexedYears& indexed) {
    DeletionSafety safety;
    for (const OrganizeAccountTally& account : overview.accounts) {
        if (!indexed.counts(account.key, accountKey)) continue;
        for (const auto& [year, tally] : account.years) {
            if (!years.empty() && (year == undatedYear || !years.contains(year))) continue;
            safety.local += tally.local;
            safety.archived += tally.archived;
        }
    }
    std::int64_t known = 0;
    for (const auto& [year, count] : indexed.countsByYear(accountKey)) {
        if (years.empty() || years.contains(year)) known += count;
    }
    safety.serverOnly = std::max<std::int64_t>(0, known - safety.local);
    return safety;
}

} // namespace screens

} // namespace corvane
