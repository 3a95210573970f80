#include "mailstore/sqlite/shell_queries.h"

#include <filesystem>
#include <memory>
#include <thread>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailstore/folders/store_location.h"
#include "mailstore/index/candidate_pieces.h"
#include "mailstore/index/excluded_mailboxes.h"
#include "mailstore/sample_mail_store.h"
#include "mailstore/sqlite/mail_index_query_error.h"
#include "mailstore/sqlite/quiet_database.h"
#include "mailstore/sqlite/sqlite_connection.h"

namespace corvane::mailstore {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Optional;
using testing::SampleMailStore;
using std::string_literals::operator""s;

TEST(SqliteShell, AnswersAreReadAsTold) {
    SampleMailStore store;
    store.close();
    const auto& [context, db] =
        std::pair<const MailStoreContext&, std::string>(store.context, store.indexPath());
    EXPECT_THAT(runRawQuery(context, "SELECT ''; SELECT ' a ', 'b'", db), Optional("a"s));
    EXPECT_THAT(runRawQuery(context, "SELECT ' a|b '", db), Optional("a"s));
    EXPECT_EQ(runRawQuery(context, "SELECT 1 WHERE 0", db), std::nullopt);
    EXPECT_THAT(runRawMultilineQuery(context, "VALUES('a|b'),(2)", db),
                Optional(ElementsAre("a|b", "2", "")));
    EXPECT_THAT(runRawMultilineQuery(context, "SELECT 1 WHERE 0", db), Optional(ElementsAre("")));
    EXPECT_THAT(runRawMultilineQuery(context, "SELECT x'61ff62'", db), Optional(ElementsAre("a\uFFFD"
                                                                                            "b",
                                                                                            "")));
    EXPECT_THAT(runIntSetQuery(context, "VALUES(7),('x'),(-1),(7),(NULL),(' 5 ')", db),
                ElementsAre(-1, 5, 7));
    EXPECT_THAT(runIntSetQuery(context, "SELECT 1 WHERE 0", db), IsEmpty());
    EXPECT_TRUE(readIndexOutline(context, db).hasMessageIDHeader);
    EXPECT_THAT(store.leftovers(), IsEmpty());
}

TEST(SqliteShell, EveryFailureIsNoValueAndLeavesNothing) {
    SampleMailStore store;
    store.close();
    const std::string db = store.indexPath();
    const auto expectNothing = [&](const std::string& path) {
        EXPECT_EQ(runRawQuery(store.context, "SELECT x FROM y", path), std::nullopt);
        EXPECT_EQ(runRawMultilineQuery(store.context, "SELECT x FROM y", path), std::nullopt);
        EXPECT_THAT(runIntSetQuery(store.context, "SELECT x FROM y", path), IsEmpty());
        EXPECT_FALSE(runJSONRows(store.context, "SELECT x FROM y", path, [](JsonRow&) {}));
        EXPECT_THROW(readIndexOutline(store.context, path + "x"), MailIndexQueryError);
        EXPECT_THAT(store.leftovers(), IsEmpty());
    };
    expectNothing(db);
    expectNothing(store.home.at("missing"));
    expectNothing(store.home.write("damaged", std::string(4096, 'x')));
    store.platform.shell = store.home.at("no-shell");
    expectNothing(db);
    EXPECT_THAT(testing::readWhole(store.support.filePath("restore-scan-diagnostic.log")),
                ::testing::AllOf(HasSubstr("sqlite query failed status=1 error="),
                                 HasSubstr("no such table: y"), HasSubstr("sqlite launch failed error=")));
    store.platform.temporary = store.home.at("no-folder");
    EXPECT_EQ(
        runShell(store.context, {.databasePath = db, .sql = "SELECT 1", .timeLimit = std::chrono::minutes(1)})
            .kind,
        ShellResult::Kind::noOutputFile);
}

TEST(SqliteShell, IsEndedAtTheLimit) {
    SampleMailStore store;
    store.close();
    store.platform.setShellScript("echo 1; exec sleep 60");
    store.context.queryTimeLimit = std::chrono::milliseconds(50);
    const std::string db = store.indexPath();
    EXPECT_EQ(runRawQuery(store.context, "SELECT 1", db), std::nullopt);
    EXPECT_THROW(runRawMultilineQuery(store.context, "SELECT 1", db), MailIndexQueryError);
    EXPECT_THAT(runIntSetQuery(store.context, "SELECT 1", db), IsEmpty());
    EXPECT_THAT(
        testing::readWhole(store.support.filePath("trash-plan-debug.log")),
        ::testing::AllOf(HasSubstr("] runRawQuery timed out; db=" + db + "\n"),
                         HasSubstr("] runRawMultilineQuery timed out; db=" + db + "\n"),
                         HasSubstr("] runIntSetQuery timed out; skipping duplicate-account detection\n")));
    store.platform.setShellScript("head -c 1000000 /dev/zero | tr '\\0' e >&2; exit 3");
    const auto result =
        runShell(store.context, {.databasePath = db, .sql = "", .timeLimit = std::chrono::minutes(1)});
    EXPECT_EQ(result.kind, ShellResult::Kind::failed);
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(result.detail.size(), 65536U) << "of an error text that would fill a pipe";
    EXPECT_THAT(store.leftovers(), IsEmpty());
}

struct Rows {
    bool isWhole = false;
    std::vector<std::string> values;
};

Rows rowsOf(const std::string& json) {
    const testing::TemporaryHome home;
    Rows rows;
    rows.isWhole = readJsonRows(home.write("rows", json), [&](JsonRow& row) {
        rows.values.push_back(
            fmt::format("{}/{}", row.integer("n").value_or(-1), row.text("t").value_or("-")));
    });
    return rows;
}

TEST(JsonRows, AreReadInAnyLayoutAndStrictly) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> good = {
        {"", {}},
        {"[]\n", {}},
        {"[{\"n\":1,\"t\":\"a\"},\n{\"n\":2}]\n", {"1/a", "2/-"}},
        {" [ {\"t\":\"a\" , \"n\":1}, {\"n\":2.9,\"t\":null} ] ", {"1/a", "2/-"}},
        {"[{\n\"n\":1},\n\n{\"n\":\"1\",\"t\":2}]", {"1/-", "-1/-"}},
        {"[{\"n\":1300928987.4999999999,\"t\":\"a\"}]", {"1300928987/a"}},
        {"[{\"n\":1e300,\"t\":\"\\u4f60\\\"\\u001f\"}]", {"-1/你\"\x1F"}},
        {"[{\"n\":1,\"t\":\"a\xFF\"},\n{\"n\":2,\"t\":\"b\"}]", {"1/a\uFFFD", "2/b"}},
        {"[{\"n\":-9223372036854775808,\"t\":\"},\\n{\"}]", {"-9223372036854775808/},\n{"}},
    };
    for (const auto& [json, values] : good) {
        const Rows rows = rowsOf(json);
        EXPECT_TRUE(rows.isWhole) << json;
        EXPECT_EQ(rows.values, values) << json;
    }
    for (const std::string bad : {"x", "{\"n\":1}", "[1]", "[{\"n\":1}", "[{\"n\":1},\n{\"n\":2",
                                  "[{\"n\":1}] x", "[{\"n\":1},\n[2]]", "[{\"n\":1},\n]", "[{\"n\" 1}]",
                                  "[{\"n\":1}\n{\"n\":2}]", "[{\"x\":1 \"t\":2}]", "\n"})
        EXPECT_FALSE(rowsOf(bad).isWhole) << bad;
    EXPECT_FALSE(readJsonRows("/nonexistent", [](JsonRow&) {}));
}

TEST(JsonRows, CrossThePiecesOfALongAnswer) {
    for (const std::string separator : {",\n", ","}) {
        std::string json = "[";
        const int count = 30'000;
        for (int i = 0; i < count; ++i)
            json += fmt::format("{}{{\"n\":{},\"t\":\"{}\"}}", i == 0 ? "" : separator, i,
                                std::string(i % 200, 'x'));
        const Rows rows = rowsOf(json + "]\n");
        EXPECT_TRUE(rows.isWhole);
        ASSERT_EQ(rows.values.size(), static_cast<std::size_t>(count));
        EXPECT_EQ(rows.values[29'999], "29999/" + std::string(199, 'x'));
        EXPECT_FALSE(rowsOf(json + ",\n1]").isWhole);
    }
}

// By the shell and by the library, of a log that its writer left and of one that it still has.
TEST(IndexReads, SeeWhatIsInWalModeAndLeaveNoFileBesideIt) {
    for (const bool isWriterThere : {false, true}) {
        SampleMailStore store;
        store.execute("PRAGMA journal_mode=WAL");
        store.addMailbox("imap://U/Trash", "");
        if (!isWriterThere) store.close();
        EXPECT_EQ(QuietDatabase(store.indexPath(), "/tmp").isURI(), !isWriterThere);
        const auto before = store.tree();
        EXPECT_THAT(runRawQuery(store.context, "SELECT count(*) FROM mailboxes", store.indexPath()),
                    Optional("1"s));
        EXPECT_THAT(trashAndJunkMailboxIDs(store.context, store.indexPath()), Optional(ElementsAre(1)));
        if (!isWriterThere) {
            EXPECT_THAT(store.changesSince(before), IsEmpty());
        }
    }
}

TEST(IndexReads, AreRepeatedWhenAWriterCameMeanwhile) {
    SampleMailStore store;
    store.execute("PRAGMA journal_mode=WAL");
    store.close();
    // The writer is the shell's own wrapper: the first read is of the database that it then changes.
    store.platform.setShellScript(fmt::format(R"sh(case "$2" in
file:*) /usr/bin/sqlite3 "$@"; status=$?
        /usr/bin/sqlite3 "{}" "INSERT INTO mailboxes VALUES('imap://U/INBOX')"; exit $status ;;
*) exec /usr/bin/sqlite3 "$@" ;;
esac)sh",
                                              store.indexPath()));
    EXPECT_THAT(runRawQuery(store.context, "SELECT count(*) FROM mailboxes", store.indexPath()),
                Optional("1"s));
}

TEST(IndexReads, OutlastALockOfAMoment) {
    SampleMailStore store;
    store.addMailbox("imap://U/Trash", "");
    store.close();
    const auto behindALock = [&](const auto& read) {
        auto writer = std::make_unique<testing::LockingWriter>(store.indexPath());
        const std::jthread release([&] {
            std::this_thread::sleep_for(busyPatience / 3);
            writer.reset();
        });
        return read();
    };
    const auto shell = [&] {
        return runRawQuery(store.context, "SELECT count(*) FROM mailboxes", store.indexPath());
    };
    EXPECT_THAT(behindALock(shell), Optional("1"s));
    EXPECT_THAT(behindALock([&] { return trashAndJunkMailboxIDs(store.context, store.indexPath()); }),
                Optional(ElementsAre(1)));
}

TEST(IndexReads, TrashIsFoundAndFailuresAreLogged) {
    SampleMailStore store;
    for (const char* url :
         {"imap://U/INBOX", "imap://U/Trash.mbox", "imap://U/Deleted%20Messages",
          "imap://U/Archive/Trash/Old", "imap://U/%E5%BA%9F%E7%BA%B8%E7%AF%93/", "imap://U/%ZZ/JUNK"})
        store.addMailbox(url, "");
    store.execute("INSERT INTO mailboxes VALUES(NULL)");
    store.close();
    EXPECT_THAT(trashAndJunkMailboxIDs(store.context, store.indexPath()), Optional(ElementsAre(2, 3, 5, 6)));
    EXPECT_THAT(trashAndJunkMailboxIDs(store.context, store.home.at("missing")), Optional(IsEmpty()));
    EXPECT_THAT(trashAndJunkMailboxIDs(store.context, store.home.write("damaged", std::string(4096, 'x'))),
                Optional(IsEmpty()));
    EXPECT_THAT(
        testing::readWhole(store.support.filePath("trash-plan-debug.log")),
        ::testing::AllOf(HasSubstr("] trashAndJunkMailboxIDs sqlite3_open_v2 failed error=unable to open"),
                         HasSubstr("] trashAndJunkMailboxIDs sqlite3_prepare_v2 failed error=file is not a "
                                   "database")));
}

TEST(IndexReads, ReadabilityIsThatOfTheFile) {
    SampleMailStore store;
    EXPECT_TRUE(canReadEnvelopeIndex(store.root));
    EXPECT_TRUE(canQueryEnvelopeIndex(store.context, store.root));
    store.platform.shell = store.home.at("no-shell");
    EXPECT_FALSE(canQueryEnvelopeIndex(store.context, store.root));
    store.close();
    fs::remove(store.indexPath());
    EXPECT_FALSE(canReadEnvelopeIndex(store.root));
    fs::create_directory(store.indexPath());
    EXPECT_FALSE(canReadEnvelopeIndex(store.root));
}

} // namespace
} // namespace corvane::mailstore
