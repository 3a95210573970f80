#include "library/overview/archived_overview.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "records/archived/counted_bytes.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

using Status = ArchivedOverviewRowStatus;
using FolderRow = ArchivedOverviewGroup::FolderRow;
using YearGroup = ArchivedOverviewGroup::YearGroup;

constexpr char keySeparator = '#';

struct YearInMaking {
    YearGroup year;
    std::unordered_map<std::string_view, std::size_t> folderOf; // by mailbox
};

void addEntry(YearInMaking& making, const ArchivedEmailRecord& record, EntryPosition position) {
    YearGroup& year = making.year;
    const auto [known, isNew] = making.folderOf.try_emplace(record.mailbox.view(), year.folders.size());
    if (isNew) {
        year.folders.push_back(
            {.accountPrefix = year.accountPrefix, .mailbox = record.mailbox.str(), .year = year.year});
    }
    FolderRow& folder = year.folders[known->second];
    folder.entries.push_back(position);
    for (auto* const count : {&folder.count, &year.count}) *count += 1;
    for (auto* const bytes : {&folder.bytes, &year.bytes}) *bytes += countedBytes(record);
}

void addYears(ArchivedOverviewGroup& group, std::map<std::int64_t, YearInMaking>& years) {
    for (auto& [number, making] : years) {
        std::ranges::sort(making.year.folders, {}, [](const FolderRow& folder) {
            return std::tuple(-folder.count, std::string_view(folder.mailbox));
        });
        group.years.push_back(std::move(making.year));
    }
}

ArchivedOverviewGroup groupOf(const ArchiveLibraryIndex& index, const LibraryAccountFilterOption& option) {
    ArchivedOverviewGroup group{.key = option.key, .title = option.title, .count = option.count};
    std::map<std::int64_t, YearInMaking> years;
    for (const EntryPosition position : index.sortedOfAccount(LibraryOrder::newestFirst, option.key)) {
        const ArchivedEmailRecord& record = index.entry(position).record;
        group.bytes += countedBytes(record);
        if (!record.date) {
            group.undated.add(countedBytes(record));
            continue;
        }
        const std::int64_t number = localYear(*record.date);
        const auto [known, isNew] = years.try_emplace(number);
        if (isNew) {
            known->second.year = {.key = fmt::format("{}{}{}", option.key, keySeparator, number),
                                  .accountPrefix = option.key,
                                  .year = number};
        }
        addEntry(known->second, record, position);
    }
    addYears(group, years);
    return group;
}

// Of all accounts that a group stands for.
std::int64_t countIn(const YearCountsByAccount& counts, const MailAccountKeys& accounts, std::int64_t year) {
    std::int64_t sum = 0;
    for (const std::string& account : accounts) {
        const auto known = counts.find(account);
        if (known == counts.end()) continue;
        const auto inYear = known->second.find(year);
        if (inYear != known->second.end()) sum += inYear->second;
    }
    return sum;
}

std::int64_t countInAllYears(const YearCountsByAccount& counts, const MailAccountKeys& accounts) {
    std::int64_t sum = 0;
    for (const std::string& account : accounts) {
        const auto known = counts.find(account);
        if (known == counts.end()) continue;
        for (const auto& [year, count] : known->second) sum += count;
    }
    return sum;
}

class OverviewCounter {
  public:
    OverviewCounter(const ArchiveLibraryIndex& index, const ArchivedOverviewFacts& facts)
      : index_(index)
      , facts_(facts) {}

    [[nodiscard]] ArchivedOverviewStats::Group count(const ArchivedOverviewGroup& group) const;

  private:
    [[nodiscard]] ArchivedOverviewStats::Year count(const ArchivedOverviewGroup& group, const YearGroup& year,
                                                    const MailNames& names) const;
    // Adds what would be freed if the year may be cleaned.
    [[nodiscard]] FolderPresence count(const FolderRow& folder, ArchivedOverviewStats::Year& year) const;
    [[nodiscard]] Status statusOf(const FolderPresence& presence, const ArchivedOverviewGroup& group,
                                  std::int64_t year) const;
    // What the search for the year's mail would find that may not be deleted.
    [[nodiscard]] ArchivedOverviewStats::FoundBesides
    besides(const ArchivedOverviewGroup& group, std::int64_t year, const MailNames& names) const;
    // All mail that the group's accounts have of the year is known to be archived.
    [[nodiscard]] bool isArchived(const ArchivedOverviewGroup& group, std::int64_t year) const;

    const ArchiveLibraryIndex& index_;
    const ArchivedOverviewFacts& facts_;
};

FolderPresence OverviewCounter::count(const FolderRow& folder, ArchivedOverviewStats::Year& year) const {
    FolderPresence counts;
    for (const EntryPosition position : folder.entries) {
        const std::int64_t bytes = countedBytes(index_.entry(position).record);
        switch (facts_.presence(position)) {
        case ArchivedOriginalPresenceStatus::present:
            counts.present += 1;
            if (facts_.isProven(position)) {
                (facts_.freesRoom(position) ? year.freeable : year.repeated).add(bytes);
            } else {
                counts.unproven += 1;
            }
            break;
        case ArchivedOriginalPresenceStatus::missing:
            counts.missing += 1;
            year.removed.add(bytes);
            break;
        case ArchivedOriginalPresenceStatus::unknown:
            counts.unknown += 1;
            year.unknown.add(bytes);
            break;
        }
    }
    return counts;
}

Status OverviewCounter::statusOf(const FolderPresence& presence, const ArchivedOverviewGroup& group,
                                 std::int64_t year) const {
    if (facts_.indexUnavailable) return Status::unavailable;
    if (!facts_.isReady) return Status::checking;
    if (facts_.presenceUnavailable) return Status::unavailable;
    // Whether all mail of the year is archived can't be asked of an account that nobody knows.
    if (group.mailAccounts.empty())
        return presence.missing > 0 && presence.present + presence.unknown == 0 ? Status::completed
                                                                                : Status::pendingReview;
    if (presence.present == 0 && presence.missing > 0) return Status::completed;
    if (presence.present == 0 && presence.unknown > 0) return Status::pendingReview;
    if (!isArchived(group, year)) {
        const bool isOnServer = countIn(facts_.undownloadedYearCounts, group.mailAccounts, year) > 0;
        return isOnServer ? Status::serverUnbacked : Status::incomplete;
    }
    // An original that Mail can't be asked for by its id is among the unproven mail of the year alone.
    const bool awaitsProof =
        presence.unproven > 0 || countIn(facts_.unprovenYearCounts, group.mailAccounts, year) > 0;
    return awaitsProof ? Status::incomplete : Status::cleanable;
}

bool OverviewCounter::isArchived(const ArchivedOverviewGroup& group, std::int64_t year) const {
    const bool isWhollyKnown =
        std::ranges::none_of(facts_.unscannedAccounts, [&](const std::string& account) {
            return group.mailAccounts.contains(account);
        });
    return isWhollyKnown && countIn(facts_.unbackedYearCounts, group.mailAccounts, year) == 0;
}

ArchivedOverviewStats::Year OverviewCounter::count(const ArchivedOverviewGroup& group, const YearGroup& year,
                                                   const MailNames& names) const {
    ArchivedOverviewStats::Year stats;
    for (const FolderRow& folder : year.folders) {
        const FolderPresence presence = count(folder, stats);
        const Status status = statusOf(presence, group, year.year);
        stats.folders.push_back({.status = status,
                                 .awaitsProof = status == Status::incomplete && isArchived(group, year.year),
                                 .presence = presence});
    }
    stats.status = archivedOverviewStatus(stats.folders);
    stats.awaitsProof = stats.status == Status::incomplete &&
                        std::ranges::all_of(stats.folders, [](const ArchivedOverviewStats::Folder& folder) {
                            return folder.status != Status::incomplete || folder.awaitsProof;
                        });
    stats.isCleanable = !stats.folders.empty() &&
                        std::ranges::all_of(stats.folders, [](const ArchivedOverviewStats::Folder& folder) {
                            return folder.status == Status::cleanable;
                        });
    if (stats.isCleanable)
        stats.besides = besides(group, year.year, names);
    else
        stats.freeable = stats.repeated = {};
    return stats;
}

ArchivedOverviewStats::FoundBesides OverviewCounter::besides(const ArchivedOverviewGroup& group,
                                                             std::int64_t year,
                                                             const MailNames& names) const {
    ArchivedOverviewStats::FoundBesides found;
    found.serverAlone = countIn(facts_.serverAloneByReceipt, group.mailAccounts, year);
    found.unlisted = countIn(facts_.unlistedByReceipt, group.mailAccounts, year);
    for (const auto* counts : {&facts_.unbackedYearCounts, &facts_.unprovenYearCounts,
                               &facts_.serverAloneByReceipt, &facts_.unlistedByReceipt})
        found.ofNamesakes += countIn(*counts, names.namesakes, year);
    found.newNamesakes = std::ranges::count_if(
        facts_.unscannedAccounts, [&](const std::string& key) { return names.namesakes.contains(key); });
    found.areNamesUnknown = !facts_.inMail.areNamesKnown || names.isNameUnknown;
    return found;
}

ArchivedOverviewStats::Group OverviewCounter::count(const ArchivedOverviewGroup& group) const {
    ArchivedOverviewStats::Group stats;
    stats.undownloaded = countInAllYears(facts_.undownloadedYearCounts, group.mailAccounts);
    MailNames names = mailNamesOf({group.key, group.title}, group.mailAccounts,
                                  index_.input().availableAccounts, facts_.inMail.accounts);
    for (const YearGroup& year : group.years) {
        stats.years.push_back(count(group, year, names));
        stats.freeable += stats.years.back().freeable;
        stats.removed += stats.years.back().removed;
        stats.unknown += stats.years.back().unknown;
    }
    stats.mailNames = std::move(names.names);
    return stats;
}

} // namespace

std::string_view rawValue(ArchivedOverviewRowStatus status) {
    static constexpr std::array<std::string_view, 7> names = {
        "checking", "unavailable", "cleanable", "incomplete", "serverUnbacked", "pendingReview", "completed"};
    return names[static_cast<std::size_t>(status)];
}

std::string ArchivedOverviewGroup::FolderRow::key() const {
    return fmt::format("{}{}{}{}{}", accountPrefix, keySeparator, mailbox, keySeparator, year);
}

std::vector<ArchivedOverviewGroup> archivedOverviewGroups(const ArchiveLibraryIndex& index) {
    const std::vector<MailAccountKeys> mailAccounts = mailAccountsOfGroups(index);
    std::map<std::string_view, const MailAccountKeys*> accountsByKey;
    for (std::size_t account = 0; account < mailAccounts.size(); ++account)
        accountsByKey.emplace(index.accounts()[account].key, &mailAccounts[account]);
    std::vector<ArchivedOverviewGroup> groups;
    for (const LibraryAccountFilterOption& option : index.accountOptions()) {
        groups.push_back(groupOf(index, option));
        groups.back().mailAccounts = *accountsByKey.at(option.key);
    }
    return groups;
}

ArchivedOverviewStats archivedOverviewStats(const ArchiveLibraryIndex& index,
                                            const std::vector<ArchivedOverviewGroup>& groups,
                                            const ArchivedOverviewFacts& facts) {
    const OverviewCounter counter(index, facts);
    ArchivedOverviewStats stats;
    for (const ArchivedOverviewGroup& group : groups) {
        stats.groups.push_back(counter.count(group));
        stats.freeable += stats.groups.back().freeable;
        stats.removed += stats.groups.back().removed;
        stats.unknown += stats.groups.back().unknown;
    }
    return stats;
}

ArchivedOverviewRowStatus archivedOverviewStatus(const std::vector<ArchivedOverviewStats::Folder>& folders) {
    // A year is called cleanable only when nothing in it is left to look at.
    static constexpr std::array order = {Status::checking,   Status::unavailable,   Status::serverUnbacked,
                                         Status::incomplete, Status::pendingReview, Status::cleanable,
                                         Status::completed};
    for (const Status status : order) {
        if (std::ranges::find(folders, status, &ArchivedOverviewStats::Folder::status) != folders.end())
            return status;
    }
    return Status::checking;
}

std::vector<std::int64_t> overviewCleanableYears(const ArchivedOverviewGroup& group,
                                                 const ArchivedOverviewStats::Group& stats) {
    std::vector<std::int64_t> years;
    for (std::size_t number = 0; number < group.years.size(); ++number) {
        if (stats.years[number].isOffered()) years.push_back(group.years[number].year);
    }
    return years;
}

namespace {

// Empty for nothing.
std::string reasonText(const ArchivedOverviewStats::FoundBesides& besides) {
    std::string text;
    const auto add = [&](std::int64_t count, std::string_view what) {
        if (count == 0) return;
        text += text.empty() ? "" : "；";
        text += fmt::format(fmt::runtime(what), count);
    };
    add(besides.serverAlone,
        "按收到日期选还会选中 {} 封只在服务器上的邮件，删除它就是删除唯一的一份，请先在 Mail 里下载并归档");
    add(besides.unlisted, "按收到日期选还会选中 {} 封上次扫描之后才有的邮件，请先更新 Mail 数据");
    add(besides.ofNamesakes, "Mail 里另有账户也是这个名称，其中 {} 封邮件还没有核对");
    add(besides.newNamesakes, "Mail 里另有 {} 个账户也是这个名称，还没有扫描，请先更新 Mail 数据");
    if (besides.areNamesUnknown)
        text += std::string(text.empty() ? "" : "；") +
                "没能读取 Mail 里账户的名称，条件会选中哪个账户不得而知，请确认完整磁盘访问权限后再对照";
    return text;
}

} // namespace

std::string leftOutReason(const ArchivedOverviewStats::Year& year) {
    if (!year.besides.isNothing()) return reasonText(year.besides);
    if (year.awaitsProof) return "还有原件没有核对";
    switch (year.status) {
    case Status::incomplete:
    case Status::serverUnbacked:
        return "还有邮件没有归档，或与归档不一致";
    case Status::cleanable:
        return "有的邮箱里已经没有原件，剩下的请在 Mail 里逐个邮箱删除";
    case Status::pendingReview:
        return "有邮件需要手动确认";
    case Status::completed:
        return "原件已经不在 Mail 里";
    default:
        return "还没有确认";
    }
}

std::vector<LeftOutYear> leftOutYears(const ArchivedOverviewGroup& group,
                                      const ArchivedOverviewStats::Group& stats) {
    std::vector<LeftOutYear> years;
    for (std::size_t number = 0; number < group.years.size(); ++number) {
        const ArchivedOverviewStats::Year& year = stats.years[number];
        if (year.isLeftOut() || year.awaitsProof)
            years.push_back({group.years[number].year, leftOutReason(year)});
    }
    return years;
}

bool isShown(const ArchivedOverviewStats::Year& year, ArchivedOverviewFilter filter) {
    switch (filter) {
    case ArchivedOverviewFilter::cleanable:
        return year.status == Status::cleanable;
    case ArchivedOverviewFilter::removed:
        return year.removed.count > 0;
    case ArchivedOverviewFilter::all:
        break;
    }
    return true;
}

} // namespace corvane
