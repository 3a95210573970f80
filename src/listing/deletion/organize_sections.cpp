#include "listing/deletion/organize_sections.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "listing/account_titles.h"
#include "listing/candidates.h"

namespace corvane {

namespace {

// No name holds it, so joined keys are unique.
constexpr char keySeparator = '\x01';

struct YearInMaking {
    OrganizeYearGroup group;
    std::unordered_map<std::string_view, std::size_t> folderOf; // by mailbox
};

struct AccountInMaking {
    OrganizeAccount account;
    TallyByYear tallies;
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
        AccountInMaking& making = accountOf(message);
        const auto year = yearIn(*input_.yearByID, message);
        const bool isArchived = input_.archivedMessageIDs->contains(message.id);
        archived_.tally(message, making.tallies[year]);
        making.account.localBytes += message.messageSize;
        const CandidateFacts facts{.isAvailable = [] { return true; },
                                   .isArchived = [&] { return isArchived; },
                                   .isWithheld = [&] { return input_.withheldIDs->contains(message.id); },
                                   .year = [&] { return year; }};
        if (isCandidate(message, limits_, facts)) addCandidate(making, year.value_or(undatedYear), message);
    }

    SharedOrganizeOverview finish();

  private:
    AccountInMaking& accountOf(const MailMessageRecord& message);
    static void addCandidate(AccountInMaking& account, std::int64_t year, const MailMessageRecord& message);

    const OrganizeInput& input_;
    const CandidateRules limits_{.maximumYear = input_.maximumYear};
    const ArchivedState archived_{*input_.archivedMessageIDs, *input_.setAsideIDs, *input_.proofs};
    std::vector<AccountInMaking> accounts_;
    std::unordered_map<std::string_view, std::size_t> positionByKey_;
};

AccountInMaking& OverviewMaker::accountOf(const MailMessageRecord& message) {
    const std::string_view key = accountGroupKey(message);
    const auto [position, isNew] = positionByKey_.try_emplace(key, accounts_.size());
    if (isNew) {
        AccountInMaking making;
        making.account.key = making.section.key = key;
        making.account.title = making.section.title = accountTitle(key, input_.accounts, message);
        accounts_.push_back(std::move(making));
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
    std::ranges::stable_sort(accounts_, [](const AccountInMaking& a, const AccountInMaking& b) {
        return a.account.localBytes != b.account.localBytes ? a.account.localBytes > b.account.localBytes
                                                            : a.account.title < b.account.title;
    });
    for (AccountInMaking& account : accounts_) {
        overview->tallies.emplace(account.account.key, std::move(account.tallies));
        overview->accounts.push_back(std::move(account.account));
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
        TallyByYear& tallies = overview->tallies[group.accountPrefix];
        for (auto stat = group.years.rbegin(); stat != group.years.rend(); ++stat) {
            section.years.push_back({fmt::format("{}{}{}", section.key, keySeparator, stat->year),
                                     section.key,
                                     stat->year,
                                     stat->messageCount,
                                     stat->messageBytes,
                                     {}});
            tallies[stat->year].local = stat->messageCount;
        }
        overview->sections.push_back(std::move(section));
        overview->accounts.push_back({group.accountPrefix, group.accountName, group.messageBytes});
    }
    return overview;
}

} // namespace corvane
