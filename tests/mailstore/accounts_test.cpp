#include "mailstore/accounts/account_discovery.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailstore/accounts/account_duplication.h"
#include "mailstore/accounts/account_identity.h"
#include "mailstore/accounts/account_queries.h"
#include "mailstore/accounts/accounts_database.h"
#include "mailstore/accounts/accounts_in_mail.h"
#include "mailstore/index/downloads_by_year.h"
#include "mailstore/index/restored_mail_diagnostics.h"
#include "mailstore/index/year_counts.h"
#include "mailstore/sample_mail_store.h"

namespace corvane::mailstore {
namespace {

using ::testing::ElementsAre;
using testing::firstAccount;
using ::testing::IsEmpty;
using testing::localAccount;
using ::testing::Optional;
using ::testing::Pair;
using testing::SampleMailStore;
using testing::secondAccount;
using testing::startOf2024;

std::string url(const char* scheme, const char* account, const char* path) {
    return fmt::format("{}://{}/{}", scheme, account, path);
}

void writeAccountsDatabase(const SampleMailStore& store, const std::string& values) {
    const std::string path = store.home.write("Library/Accounts/Accounts4.sqlite", "");
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    const std::string sql =
        "CREATE TABLE ZACCOUNT(Z_PK INTEGER, ZIDENTIFIER TEXT, ZUSERNAME TEXT, ZACCOUNTDESCRIPTION "
        "TEXT, ZPARENTACCOUNT INTEGER); INSERT INTO ZACCOUNT VALUES " +
        values;
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
}

std::vector<std::string> labels(const std::vector<MailAccount>& accounts) {
    std::vector<std::string> result;
    for (const auto& account : accounts)
        result.push_back(
            fmt::format("{} {} {}", account.urlPrefix.substr(7, 1), account.scheme, account.emailAddress));
    return result;
}

TEST(Accounts, AreNamedByTheBestSourceThatKnowsThem) {
    SampleMailStore store;
    store.addMailbox(url("imap", firstAccount, "INBOX"), std::string(firstAccount) + "/INBOX.mbox/Data");
    store.addMailbox(url("EWS", secondAccount, "INBOX"), "");
    store.addMailbox(url("local", localAccount, "Archive"), "");
    store.addMailbox("imap://DDDDDDDD-1111-2222-3333-444444444444/INBOX", "");
    store.addMailbox("pop://EEEEEEEE-1111-2222-3333-444444444444/INBOX", "");
    store.home.makeFolder("Library/Mail/V10/FFFFFFFF-1111-2222-3333-444444444444");
    for (int i = 1; i <= 3; ++i) store.add({.rowID = i, .mailbox = i, .recipients = {"parent@host.org"}});
    store.add({.rowID = 4, .mailbox = 5, .senderAddress = "nobody", .recipients = {"undisclosed"}});
    store.close();
    writeAccountsDatabase(
        store,
        fmt::format("(1,'{}','none','x me@first.org|y',7),(7,'p','parent@host.org','',0),"
                    "(2,'{}','','',7),(3,NULL,'a@b.cc','',0),(4,'DDDDDDDD-1111-2222-3333-444444444444',"
                    "'josé@host.org','',0)",
                    "aaaaaaaa-1111-2222-3333-444444444444", secondAccount));
    EXPECT_THAT(queryEmailsFromAccountsDB(store.context, {"DDDDDDDD-1111-2222-3333-444444444444"}),
                ElementsAre(Pair("DDDDDDDD-1111-2222-3333-444444444444", "josé@host.org")));
    const auto accounts = queryAccounts(store.context, store.root);
    EXPECT_THAT(labels(accounts), ElementsAre("A imap me@first.org", "B ews parent@host.org",
                                              "C local Host · 本地归档", "E pop 账户 EEEEEEEE…"));
    EXPECT_EQ(accounts[2].linkedAccountEmail, "parent@host.org");
    EXPECT_EQ(accounts[2].distinguishedLabel(), "parent@host.org（Mail 本机归档文件夹）");
    const auto inMail = queryAccountsInMail(store.context, store.root);
    EXPECT_TRUE(inMail->areNamesKnown);
    EXPECT_THAT(inMail->accounts,
                ElementsAre(AccountInMail{accounts[0].urlPrefix, "x me@first.org|y", "parent@host.org"},
                            AccountInMail{accounts[1].urlPrefix, "parent@host.org", "parent@host.org"},
                            AccountInMail{accounts[2].urlPrefix, "", ""},
                            AccountInMail{accounts[3].urlPrefix, "", ""}));
    store.home.write("Library/Accounts/Accounts4.sqlite", std::string(5000, 'x'));
    EXPECT_FALSE(queryAccountsInMail(store.context, store.root)->areNamesKnown);
    EXPECT_THAT(store.leftovers(), IsEmpty());
}

TEST(Accounts, AddressesComeFromSentMailTheInboxOrThePropertyLists) {
    SampleMailStore store;
    store.addMailbox(url("imap", firstAccount, "Sent%20Messages"), "");
    store.addMailbox(url("imap", secondAccount, "INBOX"), "");
    store.addMailbox(url("local", localAccount, "Old"), "");
    store.add({.rowID = 1, .senderAddress = "me@first.org", .recipients = {"other@x.org"}});
    store.add({.rowID = 2, .mailbox = 2, .recipients = {"me@second.org"}});
    store.add({.rowID = 3, .mailbox = 3, .recipients = {"stranger@x.org"}});
    store.close();
    EXPECT_THAT(
        labels(queryAccounts(store.context, store.root)),
        ElementsAre("A imap me@first.org", "B imap me@second.org", "C local 本地邮箱（我的 Mac 上）"));
    store.home.write(fmt::format("Library/Mail/V10/{}/INBOX.mbox/Info.plist", secondAccount),
                     "<plist><dict><key>EmailAddress</key><string>plist@second.org</string></dict></plist>");
    EXPECT_THAT(queryEmailsFromAccountsDB(store.context, {firstAccount, secondAccount}),
                ElementsAre(Pair(secondAccount, "plist@second.org")));
}

TEST(Accounts, FoldersAreListedByAccountLargestFirst) {
    SampleMailStore store;
    store.addMailbox(url("imap", firstAccount, "INBOX"), "");
    store.addMailbox(url("imap", firstAccount, "A%7CB/%E5%B7%B2%E5%8F%91.mbox"), "");
    store.addMailbox(url("imap", secondAccount, "a|b"), "");
    store.addMailbox("imap://no-uuid/INBOX", "");
    for (int i = 1; i <= 7; ++i) store.add({.rowID = i, .mailbox = i <= 2 ? 1 : i <= 5 ? 2 : i - 3});
    store.close();
    const auto folders = queryFoldersByAccount(store.context, store.root);
    ASSERT_EQ(folders.size(), 2U);
    EXPECT_THAT(folders.at(firstAccount), ElementsAre(FolderInfo{"已发", 3}, FolderInfo{"INBOX", 2}));
    EXPECT_THAT(folders.at(secondAccount), ElementsAre(FolderInfo{"a|b", 1}));
}

TEST(Accounts, TheSmallerOfTwoThatShareSeventyPercentIsNoted) {
    for (const int shared : {69, 70}) {
        SampleMailStore store;
        store.execute("BEGIN");
        store.addMailbox(url("imap", firstAccount, "INBOX"), "");
        store.addMailbox(url("imap", secondAccount, "INBOX"), "");
        for (int i = 1; i <= 100; ++i) store.add({.rowID = i, .messageID = i});
        for (int i = 1; i <= 120; ++i)
            store.add({.rowID = 1000 + i, .mailbox = 2, .messageID = i <= shared ? i : 1000 + i});
        store.add({.rowID = 5000, .messageID = 0});
        store.execute("COMMIT");
        store.close();
        std::vector<MailAccount> accounts(2);
        accounts[0].urlPrefix = std::string("imap://") + firstAccount;
        accounts[1].urlPrefix = std::string("imap://") + secondAccount;
        accounts[1].emailAddress = "b";
        const auto notes = analyzeDuplication(store.context, accounts, store.root);
        EXPECT_EQ(notes.count(accounts[0].urlPrefix), shared < 70 ? 0U : 1U);
        EXPECT_FALSE(notes.contains(accounts[1].urlPrefix));
        EXPECT_THAT(analyzeDuplication(store.context, {accounts[0]}, store.root), IsEmpty());
    }
}

TEST(Accounts, AreSortedWithTheirLocalStoresBehindThem) {
    const auto account = [](const char* email, bool isLocal, std::optional<std::string> linked) {
        MailAccount made;
        made.emailAddress = email;
        made.isLocalStore = isLocal;
        made.linkedAccountEmail = std::move(linked);
        return made;
    };
    const auto sorted =
        sortAccounts({account("z local", true, "b@x"), account("lost", true, {}), account("b@x", false, {}),
                      account("a local", true, "b@x"), account("B@x", false, {}), account("b@x", false, {})});
    std::vector<std::string> order;
    for (const auto& entry : sorted) order.push_back(entry.emailAddress);
    EXPECT_THAT(order, ElementsAre("B@x", "b@x", "a local", "z local", "b@x", "lost"));
    EXPECT_EQ(displayDomain("me@example.org"), "Example");
    EXPECT_EQ(displayDomain("host"), "Host");
    EXPECT_EQ(displayDomain("a@b@c.d"), "B@c");
}

TEST(Accounts, UUIDsAreFoundAnywhereInUpperCase) {
    EXPECT_THAT(
        extractUUIDs("x-aaaaaaaa-1111-2222-3333-44444444444g imap://aaaaaaaa-1111-2222-3333-4444444444445/"),
        ElementsAre(firstAccount));
}

TEST(YearCounts, CountMessagesOnceByLocalYearWithoutTrash) {
    const testing::TimeZoneGuard zone("Asia/Shanghai");
    SampleMailStore store;
    const std::string inbox = std::string(firstAccount) + "/INBOX.mbox/Data";
    store.addMailbox(url("imap", firstAccount, "INBOX"), inbox);
    store.addMailbox(url("imap", firstAccount, "Archive"), std::string(firstAccount) + "/Archive.mbox/Data");
    store.addMailbox(url("imap", firstAccount, "Trash"), "");
    store.addMailbox(url("imap", secondAccount, "INBOX"), "");
    const std::int64_t lateOnTheLastDay = startOf2024 - 1800;
    store.add({.rowID = 1, .messageID = 11, .date = lateOnTheLastDay});
    store.add({.rowID = 2, .mailbox = 2, .messageID = 11, .date = lateOnTheLastDay, .hasFile = false});
    store.add({.rowID = 3, .messageID = 12, .date = lateOnTheLastDay - 86'400, .hasFile = false});
    store.add(
        {.rowID = 4, .mailbox = 2, .messageID = 12, .date = lateOnTheLastDay - 86'400, .hasFile = false});
    store.add({.rowID = 5, .mailbox = 3, .messageID = 13, .date = 1'000'000'000, .hasFile = false});
    store.add({.rowID = 6, .mailbox = 4, .messageID = 14, .date = startOf2024});
    store.add({.rowID = 7, .messageID = 0, .date = startOf2024});
    store.add({.rowID = 8, .messageID = 15, .date = 0});
    // Shown by one date, and received at another: what is received decides what a search in Mail finds.
    store.execute("UPDATE messages SET display_date = date_received");
    store.execute("UPDATE messages SET date_received = strftime('%s', '2025-06-01') WHERE rowid = 1");
    store.execute("UPDATE messages SET date_received = strftime('%s', '2022-06-01') WHERE rowid IN (3, 4)");
    store.close();
    EXPECT_THAT(indexedYearDistinctCounts(store.context, store.root, {}),
                Optional(ElementsAre(Pair(2023, 1), Pair(2024, 2))));
    EXPECT_THAT(
        indexedYearDistinctCounts(store.context, store.root, {std::string("imap://") + secondAccount}),
        Optional(ElementsAre(Pair(2024, 1))));
    EXPECT_THAT(undownloadedYearCounts(store.context, store.root, {}),
                Optional(ElementsAre(Pair(2023, 1), Pair(2024, 1))));
    const auto downloads = downloadsByYear(store.context, store.root, {});
    EXPECT_THAT(downloads->aloneByReceipt, ElementsAre(Pair(2022, 1), Pair(2024, 2)));
    EXPECT_THAT(downloads->storedRows,
                ElementsAre(::testing::FieldsAre(1, 2025), ::testing::FieldsAre(7, 2024)));
    EXPECT_EQ(queryOldestIndexedYear(store.context, store.root), 2001);
    const auto sample = sampleMessageFilePresence(store.root, url("imap", firstAccount, "INBOX"), {1, 3, 4});
    EXPECT_EQ(sample.present, 1);
    EXPECT_EQ(sample.missing, 2);
    EXPECT_EQ(sampleMessageFilePresence(store.root, "imap://gone/INBOX", {1, 2}).missing, 2);
    EXPECT_THAT(store.leftovers(), IsEmpty());
}

TEST(YearCounts, CountAPartialMessageOnceAYearAndEachRowInOneAccount) {
    SampleMailStore store;
    const std::string inbox = std::string(firstAccount) + "/INBOX.mbox/Data";
    store.addMailbox(url("imap", firstAccount, "INBOX"), inbox);
    store.addMailbox(url("imap", secondAccount, firstAccount), "");
    constexpr std::int64_t year = 366 * 86'400;
    for (int row = 1; row <= 3; ++row)
        store.add({.rowID = row, .messageID = 7, .date = startOf2024 + row % 2 * year, .hasFile = false});
    store.add({.rowID = 4, .mailbox = 2, .messageID = 8, .hasFile = false});
    // In no place of a server's: Mail's search finds it.
    store.addMailbox(url("imap", firstAccount, "Projects/Trash"), "");
    store.addMailbox(url("imap", firstAccount, "INBOX/Trash"), "");
    for (int mailbox : {3, 4})
        store.add({.rowID = mailbox + 2,
                   .mailbox = mailbox,
                   .messageID = mailbox + 6,
                   .date = startOf2024,
                   .hasFile = false});
    store.close();
    for (const char* part : {"1", "2"})
        store.home.write(fmt::format("Library/Mail/V10/{}/Messages/{}.partial.emlx", inbox, part), "x");
    const auto counts = downloadsByYear(store.context, store.root, {std::string("imap://") + firstAccount});
    EXPECT_THAT(counts->partialByReceipt, ElementsAre(Pair(2024, 1), Pair(2025, 1)));
    EXPECT_THAT(counts->aloneByReceipt, ElementsAre(Pair(2024, 1)));
    EXPECT_THAT(counts->undownloaded, ElementsAre(Pair(2024, 1), Pair(2025, 1)));
}

TEST(AccountsAndYears, AreEmptyWithoutAnAnswer) {
    SampleMailStore store;
    store.home.makeFolder(std::string("Library/Mail/V10/") + firstAccount);
    // An index that can't be asked isn't one without messages.
    const auto expectNone = [&](const std::string& root, const std::optional<YearCounts>& counts) {
        EXPECT_THAT(queryAccounts(store.context, root), IsEmpty());
        EXPECT_THAT(queryFoldersByAccount(store.context, root), IsEmpty());
        EXPECT_EQ(indexedYearDistinctCounts(store.context, root, {}), counts);
        EXPECT_EQ(undownloadedYearCounts(store.context, root, {}), counts);
        EXPECT_EQ(queryOldestIndexedYear(store.context, root), std::nullopt);
    };
    expectNone(store.root, YearCounts());
    store.execute("DROP TABLE messages");
    store.close();
    expectNone(store.root, std::nullopt);
    store.platform.shell = store.home.at("missing");
    expectNone(store.root, YearCounts());
    store.platform.shell = "/usr/bin/sqlite3";
    std::filesystem::remove(store.indexPath());
    expectNone(store.root, YearCounts());
    expectNone(store.home.at("missing"), YearCounts());
}

} // namespace
} // namespace corvane::mailstore
