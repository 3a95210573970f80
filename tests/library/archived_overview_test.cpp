#include "library/overview/archived_overview.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "library/entry_sketch.h"
#include "library/overview/smart_mailbox_guide.h"
#include "library/overview/space_detail.h"

namespace corvane::testing {
namespace {

using enum ArchivedOverviewRowStatus;

// An entry's id says what is known of its original: p is present and proven, n present only, m missing, u
// unknown.
ArchivedOverviewFacts factsOf(const SharedLibraryIndex& index) {
    const auto letter = [index](EntryPosition position) {
        return index->entry(position).record.id.view().front();
    };
    ArchivedOverviewFacts facts;
    facts.isReady = true;
    facts.presence = [letter](EntryPosition position) {
        switch (letter(position)) {
        case 'm':
            return ArchivedOriginalPresenceStatus::missing;
        case 'u':
            return ArchivedOriginalPresenceStatus::unknown;
        default:
            return ArchivedOriginalPresenceStatus::present;
        }
    };
    facts.isProven = [letter](EntryPosition position) { return letter(position) != 'n'; };
    return facts;
}

struct Overview {
    SharedLibraryIndex index;
    std::vector<ArchivedOverviewGroup> groups;
    ArchivedOverviewFacts facts;

    [[nodiscard]] ArchivedOverviewStats stats() const { return archivedOverviewStats(*index, groups, facts); }
};

Overview overviewOf(LibraryIndexInput input) {
    const auto index = ArchiveLibraryIndex::make(std::move(input));
    return {index, archivedOverviewGroups(*index), factsOf(index)};
}

// Of one folder of the year 2020 with these originals, of an account of which Mail has the given figures.
struct FolderCase {
    std::vector<std::string> ids;
    std::int64_t unbacked;
    std::int64_t undownloaded;
    ArchivedOverviewRowStatus known;
    ArchivedOverviewRowStatus unknown; // where no account of Mail is known
};

Overview oneFolder(const FolderCase& one, bool hasAccount) {
    std::vector<EntrySketch> sketches;
    for (const std::string& id : one.ids) sketches.push_back({.id = id});
    LibraryIndexInput input{.entries = makeEntries(sketches)};
    if (hasAccount) input.availableAccounts = {makeAccount("imap://A", "A@x")};
    Overview overview = overviewOf(std::move(input));
    overview.facts.unbackedYearCounts["imap://A"][2020] = one.unbacked;
    overview.facts.unbackedYearCounts["imap://other"][2020] = 9;
    overview.facts.unbackedYearCounts["imap://A"][2019] = 9;
    overview.facts.undownloadedYearCounts["imap://A"][2020] = one.undownloaded;
    return overview;
}

TEST(ArchivedOverview, FolderStatuses) {
    const FolderCase cases[] = {
        {{"m1", "m2"}, 1, 1, completed, completed},
        {{"m1", "u1"}, 0, 0, completed, pendingReview},
        {{"u1"}, 1, 1, pendingReview, pendingReview},
        {{"p1"}, 0, 0, cleanable, pendingReview},
        {{"p1", "u1", "m1"}, 0, 5, cleanable, pendingReview},
        {{"p1", "n1"}, 0, 0, incomplete, pendingReview},
        {{"p1"}, 1, 0, incomplete, pendingReview},
        {{"p1", "n1"}, 1, 1, serverUnbacked, pendingReview},
    };
    for (const FolderCase& one : cases) {
        const Overview overview = oneFolder(one, true);
        const ArchivedOverviewStats stats = overview.stats();
        EXPECT_EQ(stats.groups[0].years[0].status, one.known) << one.ids[0];
        EXPECT_EQ(stats.freeable.count, one.known == cleanable ? 1 : 0) << one.ids[0];
        EXPECT_EQ(stats.groups[0].undownloaded, one.undownloaded);
        EXPECT_EQ(oneFolder(one, false).stats().groups[0].years[0].status, one.unknown) << one.ids[0];
    }
    EXPECT_TRUE(oneFolder(cases[5], true).stats().groups[0].years[0].awaitsProof);
    EXPECT_FALSE(oneFolder(cases[6], true).stats().groups[0].years[0].awaitsProof);
    Overview partly = oneFolder(cases[3], true);
    partly.facts.unscannedAccounts = {"imap://A"};
    EXPECT_EQ(partly.stats().groups[0].years[0].status, incomplete);
    EXPECT_EQ(partly.stats().freeable, MailSum());
    Overview unproven = oneFolder(cases[3], true);
    unproven.facts.unprovenYearCounts["imap://A"][2020] = 1;
    EXPECT_EQ(unproven.stats().groups[0].years[0].status, incomplete);
    EXPECT_TRUE(unproven.stats().groups[0].years[0].awaitsProof);
    Overview waiting = oneFolder(cases[3], true);
    waiting.facts.presenceUnavailable = true;
    EXPECT_EQ(waiting.stats().groups[0].years[0].status, unavailable);
    EXPECT_EQ(waiting.stats().freeable, MailSum());
    waiting.facts.isReady = false;
    EXPECT_EQ(waiting.stats().groups[0].years[0].status, checking);
    EXPECT_EQ(waiting.stats().freeable, MailSum());
}

TEST(ArchivedOverview, YearsTakeTheirLeastSafeFolder) {
    const std::pair<std::vector<ArchivedOverviewRowStatus>, ArchivedOverviewRowStatus> cases[] = {
        {{}, checking},
        {{completed, cleanable}, cleanable},
        {{cleanable, pendingReview}, pendingReview},
        {{pendingReview, incomplete}, incomplete},
        {{incomplete, serverUnbacked}, serverUnbacked},
        {{serverUnbacked, unavailable, checking}, checking},
        {{completed}, completed},
    };
    for (const auto& [statuses, year] : cases) {
        std::vector<ArchivedOverviewStats::Folder> folders;
        for (const auto status : statuses) folders.push_back({.status = status, .presence = {}});
        EXPECT_EQ(archivedOverviewStatus(folders), year);
    }
}

TEST(ArchivedOverview, OnlyWhollyCleanableYearsFreeAnything) {
    LibraryIndexInput input{.entries = makeEntries({
                                {.id = "p1", .year = 2019, .mailbox = "甲", .size = 100},
                                {.id = "m1", .year = 2019, .mailbox = "甲", .size = 7},
                                {.id = "p2", .year = 2019, .mailbox = "乙", .size = 20},
                                {.id = "p3", .year = 2020, .mailbox = "甲", .size = 1000},
                                {.id = "n3", .year = 2020, .mailbox = "乙", .size = 1000},
                                {.id = "p4", .year = 2021, .mailbox = "甲", .size = 1000},
                                {.id = "m4", .year = 2021, .mailbox = "乙", .size = 3},
                                {.id = "p5", .year = {}, .mailbox = "甲", .size = 1},
                                {.id = "u6", .year = 2022, .account = "z@x", .size = 50},
                            })};
    input.availableAccounts = {makeAccount("imap://A", "a@x")};
    const Overview overview = overviewOf(std::move(input));
    ASSERT_EQ(overview.groups.size(), 2U);
    const ArchivedOverviewGroup& group = overview.groups[0];
    EXPECT_EQ(group.count, 8);
    EXPECT_EQ(group.bytes, 3131);
    EXPECT_EQ(group.undated, (MailSum{1, 1}));
    ASSERT_EQ(group.years.size(), 3U);
    EXPECT_EQ(group.years[0].folders[0].key(), "mail-account:a@x#甲#2019");
    EXPECT_EQ(group.years[0].count, 3);

    const ArchivedOverviewStats stats = overview.stats();
    EXPECT_EQ(stats.freeable, (MailSum{2, 120}));
    EXPECT_EQ(stats.removed, (MailSum{2, 10}));
    EXPECT_EQ(stats.unknown, (MailSum{1, 50}));
    EXPECT_EQ(stats.groups[0].freeable, stats.freeable);
    EXPECT_EQ(stats.groups[0].years[1].folders[0].presence, (FolderPresence{.present = 1, .unproven = 1}));
    EXPECT_EQ(overviewCleanableYears(group, stats.groups[0]), std::vector<std::int64_t>{2019});
    EXPECT_EQ(stats.groups[0].years[2].status, cleanable); // it frees nothing while a folder is done already
    ASSERT_EQ(leftOutYears(group, stats.groups[0]).size(), 2U)
        << "that year, and the one with an unproven original";
    EXPECT_EQ(leftOutYears(group, stats.groups[0]).back().year, group.years[2].year);
    EXPECT_TRUE(isShown(stats.groups[0].years[2], ArchivedOverviewFilter::cleanable));
    EXPECT_TRUE(isShown(stats.groups[0].years[2], ArchivedOverviewFilter::removed));
    EXPECT_FALSE(isShown(stats.groups[0].years[1], ArchivedOverviewFilter::removed));
}

TEST(ArchivedOverview, AYearIsOfferedOnlyWhenNothingElseIsFoundByItsSearch) {
    const auto offered = [](const Overview& overview) {
        return overviewCleanableYears(overview.groups[0], overview.stats().groups[0]);
    };
    const Overview sound = oneFolder({{"p1"}, 0, 0, cleanable, cleanable}, true);
    EXPECT_EQ(offered(sound), std::vector<std::int64_t>{2020});
    for (const auto counts :
         {&ArchivedOverviewFacts::serverAloneByReceipt, &ArchivedOverviewFacts::unlistedByReceipt}) {
        Overview overview = sound;
        (overview.facts.*counts)["imap://A"][2020] = 1;
        EXPECT_TRUE(offered(overview).empty());
        EXPECT_EQ(leftOutYears(overview.groups[0], overview.stats().groups[0]).at(0).year, 2020);
        EXPECT_EQ(overview.stats().groups[0].years[0].status, cleanable);
    }
    // A group of the user by the name of an account that isn't in it.
    LibraryIndexInput input{
        .entries = makeEntries({{.id = "p1"}}),
        .availableAccounts = {makeAccount("imap://A", "a@x"), makeAccount("imap://B", "b@x")}};
    input.archiveAccountMergeRules = {{"mail-account:a@x", "b@x"}};
    Overview named = overviewOf(std::move(input));
    EXPECT_EQ(named.stats().groups[0].mailNames, (std::vector<MailName>{{"a@x", ""}}));
    named.facts.unbackedYearCounts["imap://B"][2020] = 1;
    EXPECT_EQ(offered(named), std::vector<std::int64_t>{2020});
    // By the name that Mail shows, which the user may have changed since the accounts were read.
    named.facts.inMail.accounts = {{"imap://A", "Work", "a@x"}, {"imap://B", "家", "b@x"}};
    EXPECT_EQ(named.stats().groups[0].mailNames, (std::vector<MailName>{{"a@x", "Work"}}));
    EXPECT_EQ(offered(named), std::vector<std::int64_t>{2020});
    for (const AccountInMail& other : std::vector<AccountInMail>{
             {"imap://B", "work ", "b@x"}, {"imap://B", "A@x", "b@x"}, {"imap://B", "家", "a@x"}}) {
        named.facts.inMail.accounts[1] = other;
        EXPECT_TRUE(offered(named).empty()) << other.shownName;
    }
    // One that nobody has listed yet.
    named.facts.unbackedYearCounts.clear();
    named.facts.unscannedAccounts = {"imap://new"};
    using Named = std::pair<const char*, bool>;
    for (const auto& [name, isOffered] : {Named("Work", false), Named("", false), Named("家", true)}) {
        named.facts.inMail.accounts[1] = {"imap://new", name, ""};
        EXPECT_EQ(!offered(named).empty(), isOffered) << name;
    }
    named.facts.inMail = {{{"imap://A", "", ""}}, false};
    EXPECT_TRUE(offered(named).empty());
    // By no name that Mail shows.
    Overview nameless = overviewOf({.entries = makeEntries({{.id = "p1", .account = "mac"}}),
                                    .availableAccounts = {makeAccount("imap://A", "mac")}});
    EXPECT_EQ(offered(nameless), std::vector<std::int64_t>{2020});
    nameless.facts.inMail.accounts = {{"imap://A", "", ""}};
    EXPECT_TRUE(offered(nameless).empty());
}

TEST(ArchivedOverview, GroupsMeanTheAccountsThatRecordsLabelsAndRulesLeadTo) {
    LibraryIndexInput input{.entries = makeEntries({
                                {.id = "1", .account = "a@x", .accountIdentifier = "imap://gone"},
                                {.id = "2", .account = "b@x"},
                                {.id = "3", .account = "c@x", .sender = "d@x"},
                                {.id = "4", .account = "none@x"},
                            })};
    input.availableAccounts = {makeAccount("imap://A", "A@X"), makeAccount("imap://B", "b@x"),
                               makeAccount("imap://D", "mac", {}, "D@x"),
                               makeAccount("local://L", "mac", {}, "d@x", true)};
    input.archiveAccountMergeRules = {{"mail-account:b@x", "组"}, {"email:d@x", "组"}};
    const Overview overview = overviewOf(std::move(input));
    ASSERT_EQ(overview.groups.size(), 3U);
    EXPECT_EQ(overview.groups[0].key, "usergroup:组");
    EXPECT_EQ(overview.groups[0].mailAccounts, (MailAccountKeys{"imap://B", "imap://D"}));
    EXPECT_EQ(overview.groups[1].mailAccounts, (MailAccountKeys{"imap://A", "imap://gone"}));
    EXPECT_EQ(overview.stats().groups[0].mailNames, (std::vector<MailName>{{"b@x", ""}, {"D@x", ""}}));
    EXPECT_EQ(overview.groups[2].mailAccounts, MailAccountKeys());

    const auto groups = archiveAccountGroups(*overview.index);
    ASSERT_EQ(groups[0].baseAccounts.size(), 1U);
    EXPECT_EQ(groups[0].baseAccounts[0].key, "mail-account:b@x");
    using Mailboxes = std::vector<ArchiveAccountGroup::MailboxGroup>;
    EXPECT_EQ(groups[0].mailboxes, (Mailboxes{{"INBOX", 2, 20}}));
    EXPECT_EQ(groups[0].directMailboxes, (Mailboxes{{"INBOX", 1, 10}}));
    EXPECT_EQ(groups[1].directMailboxes, groups[1].mailboxes);
}

TEST(SmartMailboxGuide, SpansOnlyAdjoiningYears) {
    const std::vector<std::int64_t> years = {2022, 2019, 2020, 2019};
    const std::vector<MailName> names = {{"a@x", ""}, {"b@x", ""}};
    const auto targets = smartMailboxGuideTargets(names, years);
    ASSERT_EQ(targets, (std::vector<SmartMailboxGuideTarget>{
                           {"a@x", {2019, 2020}}, {"a@x", {2022}}, {"b@x", {2019, 2020}}, {"b@x", {2022}}}));
    EXPECT_EQ(conditionText(targets[0]),
              "「账号」是「a@x」;并「收到日期」在 2019 年 1 月 1 日之后、在 2021 年 1 月 1 日之前。");
    EXPECT_EQ(suggestedName(targets[0]), "可删除·2019–2020");
    EXPECT_EQ(suggestedName(targets[1]), "可删除·2022");
    EXPECT_EQ(smartMailboxGuideSteps(targets[1])[0].lines[1], "名字随意,比如「可删除·2022」");
    EXPECT_EQ(conditionText({"a@x", {2019, 2022}}),
              "「账号」是「a@x」;并「收到日期」在 2019 年 1 月 1 日之后、在 2023 年 1 月 1 日之前。");
    EXPECT_EQ(conditionText({"a@x", {}}), "");
    EXPECT_EQ(suggestedName({"a@x", {}}), "可删除");
    EXPECT_TRUE(smartMailboxGuideTargets(names, {}).empty());
    EXPECT_EQ(smartMailboxGuideSteps({"a@x", {2019}, "Work"})[1].lines[1],
              "这个账户在 Mail 的菜单里显示为「Work」,请选它。");
}

TEST(SpaceDetail, TicksSumAndGatherTheMessagesOfSenders) {
    SpaceAccountUsage account;
    account.localCount = 17'413;
    account.localBytes = 5'720'000'000;
    EXPECT_EQ(spaceDetailCountLine(account), "17,413 封 · 5.72 GB · 本机可备份");
    account.topSenders = {{"a@x", "A", 2, 30}, {"b@x", "B", 1, 20}, {"c@x", "C", 1, 5}};
    EXPECT_EQ(spaceDetailCountLine(account), "3 个发件人 · 17,413 封 · 5.72 GB · 本机可备份");
    SpaceSenderTicks ticks;
    for (const std::string_view key : {"a@x", "b@x", "gone@x", "c@x", "c@x"}) ticks.toggle(key);
    ticks.prune(account);
    EXPECT_EQ(ticks.sumIn(account), (SpaceSenderTicks::Sum{2, 3, 50}));
    EXPECT_EQ(ticks.messageIDs([](const std::string& key) { return std::vector<SharedText>{key, "both"}; }),
              (SharedTextSet{"a@x", "b@x", "both"}));
}

} // namespace
} // namespace corvane::testing
