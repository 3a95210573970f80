#include "mailstore/scan/mail_data_scanner.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <utility>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailstore/index/indexed_messages.h"
#include "mailstore/sample_mail_store.h"
#include "mailstore/sqlite/mail_index_query_error.h"

namespace corvane::mailstore {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::startOf2024;
using testing::subjectsOf;
using Batch = RecordBatch;
using Kind = MailIndexQueryError::Kind;

// Also sees to it that a failure comes before any batch and leaves nothing behind.
struct Inbox : testing::ScannedStore {
    using ScannedStore::ScannedStore;

    [[nodiscard]] std::optional<MailIndexQueryError> failure() const {
        int batches = 0;
        try {
            scanner().scanBatches([&](Batch&&) { ++batches; });
        } catch (const MailIndexQueryError& error) {
            EXPECT_EQ(batches, 0);
            EXPECT_THAT(leftovers(), IsEmpty());
            return error;
        }
        return std::nullopt;
    }
};

TEST(Scan, RecordsHoldWhatTheIndexTells) {
    Inbox store;
    store.add({.rowID = 1234,
               .messageID = 7,
               .subject = "你好 \"x\"\n",
               .senderName = " 张三 ",
               .recipients = {"a@x", "b@x"},
               .date = startOf2024,
               .size = 0,
               .header = "<ID@X>",
               .attachments = {"a.txt^_b.pdf", "logo.png", ""}});
    const auto batches = store.scan();
    ASSERT_EQ(batches.size(), 2U);
    EXPECT_EQ(batches[0].visitedCount, 0);
    EXPECT_THAT(batches[0].records, IsEmpty());
    ASSERT_EQ(batches[1].records.size(), 1U);
    const MailMessageRecord& record = batches[1].records[0];
    EXPECT_EQ(record.id, store.mailPath(Inbox::inbox + "1/Messages/1234.emlx"));
    EXPECT_EQ(record.fileURL.path(), record.id);
    EXPECT_EQ(record.subject, "你好 \"x\"\n");
    EXPECT_EQ(record.sender, "张三 <sender@example.org>");
    EXPECT_EQ(record.recipients, "a@x, b@x");
    EXPECT_EQ(record.date->time_since_epoch().count(), startOf2024);
    EXPECT_EQ(record.mailbox, "INBOX");
    EXPECT_EQ(*record.accountIdentifier, Inbox::account);
    EXPECT_EQ(*record.accountName, "me@example.org");
    EXPECT_EQ(record.isImportedMailbox, std::nullopt);
    EXPECT_EQ(*record.messageIdentifier, "id@x");
    EXPECT_EQ(record.messageSize, 7); // of the file, since the index has none
    EXPECT_EQ(record.preview, "正在加载正文预览...");
    ASSERT_EQ(record.attachments.size(), 2U);
    EXPECT_EQ(record.attachments[0].fileName, "a.txt");
    EXPECT_EQ(record.attachments[1].mimeType, "PDF 文档");
    EXPECT_THAT(batches[1].timingLog,
                ::testing::MatchesRegex("总 .*s｜已访问 1｜已纳入 1｜含附件 1｜Mail索引 .*s/1 封｜.*"
                                        "｜无附件快跳 0｜年份跳过 0"));
}

TEST(Scan, OnlyDownloadedMessagesOfKnownMailboxesAreListedNewestFirst) {
    Inbox store;
    store.addMailbox("imap://gone/INBOX", "");
    store.add({.rowID = 1, .subject = "old", .senderAddress = "", .date = startOf2024 - 9});
    store.add({.rowID = 999, .subject = "", .date = startOf2024 + 5});
    store.add({.rowID = 1000, .subject = "new", .date = startOf2024 + 9});
    store.add({.rowID = 1001, .subject = "server only", .date = startOf2024 + 8, .hasFile = false});
    store.add({.rowID = 3, .mailbox = 2, .subject = "no folder"});
    store.add({.rowID = 4, .subject = "no date", .date = 0});
    const auto batches = store.scan();
    EXPECT_THAT(subjectsOf(batches), ElementsAre("new", "无主题", "old"));
    EXPECT_EQ(batches.back().records[2].sender, "发件人未知");
    EXPECT_THAT(batches.back().timingLog, ::testing::HasSubstr("s/5 封｜"));
    EXPECT_THAT(store.leftovers(), IsEmpty());
}

TEST(Scan, BatchesComeByRecordsAndByVisits) {
    Inbox store;
    store.execute("BEGIN");
    for (int i = 0; i < 250; ++i)
        store.add({.rowID = 2000 - i, .subject = std::to_string(i), .date = startOf2024 - i});
    store.execute("COMMIT");
    const auto batches = store.scan();
    std::vector<std::pair<std::int64_t, std::size_t>> shape;
    for (const auto& batch : batches) {
        EXPECT_EQ(batch.scannedCount, batch.visitedCount);
        shape.emplace_back(batch.visitedCount, batch.records.size());
    }
    using Shape = std::vector<std::pair<std::int64_t, std::size_t>>;
    EXPECT_EQ(
        shape,
        (Shape{
            {0, 0}, {40, 40}, {80, 40}, {100, 20}, {140, 40}, {180, 40}, {200, 20}, {240, 40}, {250, 10}}));
    const auto all = subjectsOf(batches);
    for (int i = 0; i < 250; ++i) EXPECT_EQ(all[static_cast<std::size_t>(i)], std::to_string(i));
    EXPECT_EQ(Inbox().scan().size(), 2U) << "the first and the last, with nothing to list";
}

TEST(Scan, YearsEndAtMidnightUTCInAnyZone) {
    const testing::TimeZoneGuard zone("Asia/Shanghai");
    Inbox store;
    store.add({.rowID = 1, .subject = "last second", .date = startOf2024 - 1});
    store.add({.rowID = 2, .subject = "first second", .date = startOf2024});
    store.close();
    MailDataScanner scanner = store.scanner();
    scanner.maximumYear = 2023;
    EXPECT_THAT(subjectsOf(Inbox::scan(scanner)), ElementsAre("last second"));
    scanner.maximumYear = 99'999;
    EXPECT_THROW((void)Inbox::scan(scanner), MailIndexQueryError);
}

TEST(Scan, AccountsAreChosenByWhateverTheirPrefixHolds) {
    Inbox store;
    store.addMailbox(std::string("ews://") + testing::secondAccount + "/INBOX",
                     std::string(testing::secondAccount) + "/INBOX.mbox/Data");
    store.add({.rowID = 1, .subject = "first"});
    store.add({.rowID = 2, .mailbox = 2, .subject = "second"});
    store.close();
    MailDataScanner scanner = store.scanner();
    scanner.accountURLPrefixes = {std::string("imap://") + testing::secondAccount, "imap://it's"};
    const auto batches = Inbox::scan(scanner);
    EXPECT_THAT(subjectsOf(batches), ElementsAre("second"));
    EXPECT_EQ(batches.back().records[0].accountIdentifier, std::nullopt);
}

TEST(Scan, AStoreWithoutTheIdentifierColumnIsListed) {
    Inbox store(Inbox::IdentifierColumn::missing);
    store.add({.rowID = 1, .messageID = 5, .header = "<a@x>"});
    const auto batches = store.scan();
    ASSERT_EQ(batches.back().records.size(), 1U);
    EXPECT_EQ(batches.back().records[0].messageIdentifier, std::nullopt);
}

TEST(Scan, HostileRowsCostOnlyThemselves) {
    Inbox store;
    store.addMailbox("imap://../../..", "");
    store.add({.rowID = 1, .subject = "good"});
    store.add({.rowID = 2, .subject = "bytes", .date = startOf2024 - 1});
    store.add({.rowID = 3, .mailbox = 2, .subject = "outside"});
    store.execute("UPDATE subjects SET subject = CAST(x'61FF62' AS TEXT) WHERE subject = 'bytes'");
    store.execute("UPDATE messages SET size = 'big', date_received = 1e9 WHERE rowid = 1");
    EXPECT_THAT(subjectsOf(store.scan()), ElementsAre("a\uFFFD"
                                                      "b",
                                                      "good"));
}

TEST(Scan, FailuresOfTheIndexAreToldBeforeAnyBatch) {
    Inbox store;
    store.add({.rowID = 1});
    store.close();
    {
        const testing::LockingWriter writer(store.indexPath());
        const auto locked = store.failure();
        ASSERT_TRUE(locked);
        EXPECT_THAT(*locked->errorDescription(),
                    ::testing::MatchesRegex("读取 Mail 索引失败：.*database is locked.*"));
    }
    EXPECT_EQ(store.failure(), std::nullopt);
    store.reopen();
    store.execute("DROP TABLE recipients");
    store.close();
    EXPECT_EQ(store.failure()->kind(), Kind::queryFailed);
    std::ofstream(store.indexPath(), std::ios::trunc) << "not a database, and long enough to be looked at";
    EXPECT_EQ(store.failure()->kind(), Kind::queryFailed);
    std::ofstream(store.indexPath(), std::ios::trunc).flush();
    EXPECT_EQ(store.failure()->kind(), Kind::queryFailed);
    store.platform.setShellScript("exit 9");
    EXPECT_EQ(store.failure()->errorDescription(), "读取 Mail 索引失败，请稍后重试。");
    for (const char* output : {"{}", "[1]", "[{", "rowid|url"}) {
        store.platform.setShellScript(fmt::format("echo '{}'", output));
        EXPECT_EQ(store.failure(), MailIndexQueryError(Kind::unreadableOutput)) << output;
    }
    store.platform.shell = store.home.write("not-executable-by-format", "\x7F");
    fs::permissions(store.platform.shell, fs::perms::owner_all);
    EXPECT_EQ(store.failure()->kind(), Kind::launchFailed);
    store.platform.temporary = store.home.at("missing");
    EXPECT_EQ(store.failure(), MailIndexQueryError(Kind::unreadableOutput));
}

TEST(Scan, RowsDoNotCountWhenTheShellFailsOrIsStartedAnew) {
    Inbox store;
    store.execute("PRAGMA journal_mode=WAL");
    store.execute("BEGIN");
    for (int i = 1; i <= 900; ++i)
        store.add({.rowID = i, .subject = std::string(600, 'x') + std::to_string(i)});
    store.execute("COMMIT");
    store.close();
    const std::string changed =
        fmt::format("/usr/bin/sqlite3 '{}' 'DELETE FROM messages WHERE rowid > 800'", store.indexPath());
    const std::string script = R"sh(case "$2$3" in
-jsonfile:*) /usr/bin/sqlite3 "$@"; {} ;;
*) exec /usr/bin/sqlite3 "$@" ;;
esac)sh";
    store.platform.setShellScript(fmt::format(fmt::runtime(script), "exit 9"));
    EXPECT_EQ(store.failure()->kind(), Kind::queryFailed);
    store.platform.setShellScript(fmt::format(fmt::runtime(script), "echo ',{'"));
    EXPECT_EQ(store.failure(), MailIndexQueryError(Kind::unreadableOutput));
    store.platform.setShellScript(fmt::format(fmt::runtime(script), changed));
    const auto batches = Inbox::scan(store.scanner());
    EXPECT_EQ(subjectsOf(batches).size(), 800U);
    EXPECT_EQ(batches[1].foundCount, 800U);
    EXPECT_THAT(batches.back().timingLog, ::testing::HasSubstr("s/800 封｜"));
}

TEST(Scan, AStopEndsTheShellAndTheBatches) {
    Inbox store;
    for (int i = 1; i <= 400; ++i) store.add({.rowID = i});
    store.close();
    std::stop_source stop;
    std::int64_t visited = 0;
    store.scanner().scanBatches(
        [&](Batch&& batch) {
            visited = batch.visitedCount;
            if (visited >= 40) stop.request_stop();
        },
        stop.get_token());
    EXPECT_EQ(visited, 140); // the rest of the chunk makes no batch any more
    store.platform.setShellScript("exec sleep 60");
    int batches = 0;
    store.scanner().scanBatches([&](Batch&&) { ++batches; }, stop.get_token());
    EXPECT_EQ(batches, 0);
    EXPECT_THAT(store.leftovers(), IsEmpty());
}

TEST(Scan, LeavesTheStoreAsItWas) {
    Inbox store;
    for (int i = 1; i <= 20; ++i) store.add({.rowID = i * 700, .attachments = {"a.pdf"}});
    store.home.write("Library/Mail/V10/" + Inbox::inbox + "Attachments/700/2/a.pdf", "x");
    store.execute("PRAGMA journal_mode=WAL");
    store.close();
    const auto before = store.tree();
    EXPECT_EQ(subjectsOf(store.scan()).size(), 20U);
    EXPECT_THAT(store.changesSince(before), IsEmpty());
}

} // namespace
} // namespace corvane::mailstore
