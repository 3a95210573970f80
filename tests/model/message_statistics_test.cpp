#include <functional>
#include <tuple>

#include "listing/count_reconciliation.h"
#include "listing/message_statistics.h"
#include "listing/scan_deduplication.h"
#include "listing/space_usage.h"
#include "model/mail/visible_messages.h"
#include "records/timestamps.h"
#include "support/temporary_home.h"

namespace corvane {
namespace {

Date at(std::int64_t seconds) {
    return Date(std::chrono::seconds(seconds));
}

constexpr std::int64_t newYear2024 = 1704067200; // UTC

struct Sketch {
    std::string id;
    std::optional<std::int64_t> date = newYear2024;
    std::string identifier = {};
    std::string mailbox = "INBOX";
    std::optional<std::string> account = "imap://A";
    std::int64_t size = 10;
    std::vector<std::int64_t> attachmentSizes = {}; // negative: not known
    std::string subject = "s";
    std::string sender = "x@y";
};

MailMessageRecord make(const Sketch& sketch) {
    MailMessageRecord message;
    message.id = sketch.id;
    message.fileURL = FileURL(message.id);
    if (sketch.date) message.date = at(*sketch.date);
    if (!sketch.identifier.empty()) message.messageIdentifier = SharedText(sketch.identifier);
    message.mailbox = sketch.mailbox;
    if (sketch.account) message.accountIdentifier = SharedText(*sketch.account);
    message.messageSize = sketch.size;
    for (const std::int64_t size : sketch.attachmentSizes) {
        message.attachments.push_back({Uuid(), "文件.pdf", "PDF 文档", std::nullopt, std::nullopt});
        if (size >= 0) message.attachments.back().estimatedSize = size;
    }
    message.subject = sketch.subject;
    message.sender = sketch.sender;
    return message;
}

MessageList makeAll(const std::vector<Sketch>& sketches) {
    MessageList messages;
    for (const Sketch& sketch : sketches) messages.push_back(make(sketch));
    return messages;
}

TEST(YearStats, CountEachMessageOnceOutsideOfTrashInLocalYears) {
    const testing::TimeZoneGuard zone("Asia/Shanghai");
    const MessageList messages = makeAll({
        {.id = "1", .date = newYear2024 - 8 * 3600, .attachmentSizes = {5, -1}},
        {.id = "2", .date = newYear2024 - 8 * 3600 - 1},
        {.id = "3", .identifier = "m"},
        {.id = "4", .identifier = "m", .size = 99},
        {.id = "5", .mailbox = " Deleted Messages.mbox "},
        {.id = "6", .mailbox = "垃圾邮件"},
        {.id = "7", .date = std::nullopt},
        {.id = "8", .date = -99999999999},
    });
    const auto stats = computeYearStats(allOf(messages));
    ASSERT_EQ(stats.size(), 2U);
    EXPECT_EQ(stats[0], (YearStat{2024, 2, 1, 2, 20, 5}));
    EXPECT_EQ(stats[1], (YearStat{2023, 1, 0, 0, 10, 0}));
    EXPECT_FALSE(computeMessageYears(messages).contains("7"));
}

TEST(AccountStats, AreNamedAndOrderedByBytes) {
    MailAccount known;
    known.urlPrefix = "imap://A";
    known.emailAddress = "a@b";
    const MessageList messages = makeAll({
        {.id = "1"},
        {.id = "2", .account = std::nullopt, .size = 50},
        {.id = "3", .account = "imap://Z", .size = 10},
        {.id = "4", .mailbox = "Trash", .account = "imap://T"},
        {.id = "5", .date = std::nullopt, .account = "imap://U"},
    });
    std::vector<std::string> found;
    for (const auto& group : computeAccountYearStats(allOf(messages), {known})) {
        found.push_back(group.accountPrefix + "=" + group.accountName + ":" +
                        std::to_string(group.messageBytes));
    }
    EXPECT_EQ(found, (std::vector<std::string>{"legacy-unclassified=未识别邮箱:50", "imap://A=a@b:10",
                                               "imap://Z=imap://Z:10", "imap://U=imap://U:0"}));
}

TEST(Summary, AddsUpAndFindsTheExtremes) {
    const MessageList messages = makeAll(
        {{.id = "1", .date = 5, .attachmentSizes = {-1}}, {.id = "2", .date = 9}, {.id = "3", .date = {}}});
    const MailScanSummary summary = makeSummary(allOf(messages), 7);
    EXPECT_EQ(summary.scannedMessages, 7);
    EXPECT_EQ(summary.matchedMessages, 3);
    EXPECT_EQ(summary.attachmentMessages, 1);
    EXPECT_EQ(summary.bytes, 30);
    EXPECT_EQ(summary.newestDate, at(9));
    EXPECT_EQ(summary.oldestDate, at(5));
}

TEST(Order, PutsUndatedMessagesLastInBothDirections) {
    const MailMessageRecord early = make({.id = "1", .date = 1, .subject = "b"});
    const MailMessageRecord late = make({.id = "2", .date = 2});
    const MailMessageRecord undated = make({.id = "3", .date = {}, .subject = "a"});
    for (const bool ascending : {false, true}) {
        EXPECT_TRUE(compareByDate(early, undated, ascending));
        EXPECT_FALSE(compareByDate(undated, early, ascending));
        EXPECT_EQ(compareByDate(early, late, ascending), ascending);
    }
    EXPECT_TRUE(compareByDate(make({.id = "4", .date = 1, .subject = "a"}), early, false));
}

TEST(Deduplication, KeepsThePlaceOfTheFirstAndAllFiles) {
    MailMessageRecord first = make({.id = "/m/a10.emlx", .identifier = "m"});
    MailMessageRecord other = make({.id = "/m/x.emlx", .identifier = "n"});
    MailMessageRecord better = make({.id = "/m/a9.emlx", .identifier = "m", .attachmentSizes = {1}});
    MailMessageRecord tie = make({.id = "/m/a9.emlx", .identifier = "m", .attachmentSizes = {1}});
    const MessageList merged = deduplicatedRecords({first, other, better, tie});
    ASSERT_EQ(merged.size(), 2U);
    EXPECT_EQ(merged[0].id, "/m/a9.emlx");
    EXPECT_EQ(merged[0].relatedMessageFileURLs, (std::vector{FileURL("/m/a9.emlx"), FileURL("/m/a10.emlx")}));
    EXPECT_FALSE(merged[1].relatedMessageFileURLs);
    EXPECT_EQ(deduplicatedRecords(merged), merged) << "a second pass changes nothing";
}

TEST(Deduplication, KeysAreExactForIdentifiersAndLooseWithout) {
    EXPECT_NE(duplicateKey(make({.id = "1", .identifier = "A"})),
              duplicateKey(make({.id = "2", .identifier = "a"})));
    EXPECT_EQ(duplicateKey(make({.id = "1", .subject = " Ärger\n"})),
              duplicateKey(make({.id = "2", .subject = "äRGER"})));
    EXPECT_NE(duplicateKey(make({.id = "1", .date = {}})), duplicateKey(make({.id = "2"})));
    EXPECT_EQ(deduplicatedRecords({make({.id = "1", .date = {}}), make({.id = "2", .date = {}})}).size(), 1U);
    EXPECT_FALSE(isBetterDuplicate(make({.id = "1", .attachmentSizes = {5, 5}}),
                                   make({.id = "2", .attachmentSizes = {10, -1}})));
}

TEST(SpaceUsage, TakesSendersApart) {
    const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
        {" \"张三\" <Zhang@Example.COM> ", "zhang@example.com", "张三"},
        {"<A@b>", "a@b", "a@b"},
        {"Plain Name", "plain name", "Plain Name"},
        {"a <b> <C@d>", "c@d", "a <b>"},
        {"> odd <", "> odd <", "> odd <"},
        {"name <>", "name <>", "name <>"}};
    for (const auto& [sender, key, display] : cases) {
        EXPECT_EQ(spaceSenderParts(sender), (SpaceSenderParts{key, display})) << sender;
    }
}

TEST(SpaceUsage, SeparatesLocalFromServerOnlyAndKeepsTheLargestSenders) {
    std::vector<Sketch> sketches = {{.id = "gone", .size = 1000},
                                    {.id = "a", .size = 7, .sender = "x@y"},
                                    {.id = "b", .size = 7, .sender = "Name <x@y>"},
                                    {.id = "c", .account = "", .size = 1}};
    for (int number = 0; number < 210; ++number) {
        sketches.push_back({.id = "s" + std::to_string(number),
                            .account = "imap://B",
                            .size = 1,
                            .sender = "s" + std::to_string(number) + "@z"});
    }
    const MessageList messages = makeAll(sketches);
    SharedTextSet available;
    for (const auto& message : messages) {
        if (message.id != "gone") available.insert(message.id);
    }
    const auto usages = computeSpaceUsage(messages, &available, {});
    ASSERT_EQ(usages.size(), 3U);
    EXPECT_EQ(usages[0].topSenders.size(), 200U);
    EXPECT_EQ(usages[1].cloudOnlyBytes, 1000);
    EXPECT_EQ(usages[1].topSenders, (std::vector{SpaceSenderStat{"x@y", "Name", 2, 14}}));
    EXPECT_EQ(usages[2].accountPrefix, "legacy-unclassified");
    EXPECT_EQ(computeSpaceUsage(messages, nullptr, {})[0].localBytes, 1014)
        << "all are local while nothing is known";
}

TEST(DeletionSafety, CountsOnlyWhatIsLocalAndArchived) {
    const MessageList messages = makeAll({{.id = "1", .identifier = "a"},
                                          {.id = "2", .identifier = "b"},
                                          {.id = "3", .identifier = "a2", .account = "imap://B"},
                                          {.id = "4", .identifier = "gone"},
                                          {.id = "5", .date = {}, .identifier = "c"}});
    const SharedTextSet available = {"1", "2", "3", "5"};
    const SharedTextSet archived = {"mid:a", "mid:a2", "mid:gone"};
    const YearByID years = computeMessageYears(messages);
    const std::set<std::string> all;
    const std::set<std::string> onlyA = {"imap://A"};
    const CountByYear counts = {{2024, 10}, {2020, 1}};
    const CountByAccountAndYear byAccount = {{"imap://A", {{2024, 3}}}};
    const auto safety = [&](const auto& accounts, const std::set<std::int64_t>& chosen,
                            const SharedTextSet& local) {
        return deletionSafety({messages, local, archived, years, accounts, counts, byAccount}, chosen);
    };
    const std::int64_t year = localYear(at(newYear2024));
    EXPECT_EQ(safety(all, {}, available), (DeletionSafety{4, 2, 7}));
    EXPECT_EQ(safety(onlyA, {year}, available), (DeletionSafety{2, 1, year == 2024 ? 1 : 0}));
    EXPECT_EQ(safety(all, {1999}, available), (DeletionSafety{0, 0, 0}));
    EXPECT_EQ(safety(all, {}, {}).archived, 0) << "nothing is safe while nothing is known to be local";
}

TEST(VisibleMessages, PassEveryRule) {
    const MessageList messages =
        makeAll({{.id = "a", .date = 1, .size = 5, .attachmentSizes = {1}, .subject = "ÄB"},
                 {.id = "b", .date = newYear2024, .account = std::nullopt, .size = 9},
                 {.id = "c", .date = {}, .size = 9},
                 {.id = "gone"}});
    ListInput input{std::make_shared<const MessageList>(messages),
                    std::make_shared<const SharedTextSet>(SharedTextSet{"a", "b", "c"}),
                    std::make_shared<const SharedTextSet>(SharedTextSet{"b"}),
                    std::make_shared<const YearByID>(computeMessageYears(messages))};
    const auto shown = [&](const std::function<void(ListRules&)>& change) {
        ListRules rules;
        change(rules);
        std::string ids;
        const auto list = makeVisibleMessages(input, rules);
        for (const auto& message : *list) ids += message.id.view();
        return ids;
    };
    EXPECT_EQ(shown([](auto&) {}), "bac");
    EXPECT_EQ(shown([](auto& rules) { rules.ascending = true; }), "abc");
    EXPECT_EQ(shown([](auto& rules) { rules.sortMode = MailSortMode::messageSize; }), "bca");
    EXPECT_EQ(shown([](auto& rules) { rules.accountPrefixes = {"legacy-unclassified"}; }), "b");
    EXPECT_EQ(shown([](auto& rules) { rules.minimumAttachmentCount = 1; }), "a");
    EXPECT_EQ(shown([](auto& rules) { rules.newestYear = 1990; }), "a");
    EXPECT_EQ(shown([](auto& rules) { rules.migrated = MigratedFilter::onlyMigrated; }), "b");
    EXPECT_EQ(shown([](auto& rules) { rules.migrated = MigratedFilter::notMigrated; }), "ac");
    EXPECT_EQ(shown([](auto& rules) { rules.query = "äb"; }), "a");
    EXPECT_EQ(shown([](auto& rules) { rules.query = "文件"; }), "a");
    const MessageList inOrder = *makeVisibleMessages(input, {});
    input.messages = std::make_shared<const MessageList>(inOrder);
    EXPECT_EQ(makeVisibleMessages(input, {}), input.messages) << "what is as it should be isn't copied";
    input.locallyAvailableIDs = std::make_shared<const SharedTextSet>();
    EXPECT_EQ(shown([](auto&) {}), "") << "nothing is listed while availability isn't known";
}

TEST(Reconciliation, NamesOnlyYearsThatDifferInEitherDirection) {
    const CountByYear indexed = {{2023, 3}, {2024, 5}};
    const CountByAccountAndYear byAccount = {{"imap://A", {{2023, 3}, {2024, 4}}}, {"imap://B", {{2024, 1}}}};
    const auto year = [](std::int64_t number, std::int64_t count) {
        YearStat stat;
        stat.year = number;
        stat.messageCount = count;
        return stat;
    };
    const auto group = [](const std::string& account, std::vector<YearStat> years) {
        return AccountYearStatGroup{account, "", std::move(years), 0, 0};
    };
    const std::vector<YearStat> downloaded = {year(2023, 3), year(2024, 2), year(2019, 1)};
    const auto lines =
        reconciliationLines({indexed, byAccount},
                            {downloaded,
                             {group("imap://A", {year(2023, 3), year(2024, 2)}), group("", {year(2019, 1)})},
                             {group("imap://A", {year(2024, 1)})}});
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "[reconcile] indexedTotal=8 downloadedTotal(yearStats)=6 indexedOnly=2",
                         "[reconcile] [2019] indexed=0 downloaded=1 candidate=0",
                         "[reconcile] imap://A[2024] indexed=4 downloaded=2 candidate=1",
                         "[reconcile] imap://B[2024] indexed=1 downloaded=0 candidate=0"}));
}

} // namespace
} // namespace corvane
