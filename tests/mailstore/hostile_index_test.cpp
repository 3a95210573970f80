// Indexes that somebody else made: nothing that their schema asks for is done, and every question ends.
#include <chrono>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <thread>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "mailstore/accounts/account_discovery.h"
#include "mailstore/accounts/account_duplication.h"
#include "mailstore/index/downloads_by_year.h"
#include "mailstore/index/excluded_mailboxes.h"
#include "mailstore/index/live_presence.h"
#include "mailstore/index/restored_mail_diagnostics.h"
#include "mailstore/sample_mail_store.h"
#include "mailstore/sqlite/mail_index_query_error.h"
#include "mailstore/sqlite/shell_queries.h"

namespace corvane::mailstore {
namespace {

namespace fs = std::filesystem;

using std::chrono::milliseconds;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::ScannedStore;
using testing::subjectsOf;

constexpr const char* endless =
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT max(i) FROM n";

struct HostileStore : testing::ScannedStore {
    HostileStore() {
        add({.rowID = 1, .messageID = 1, .recipients = {"me@first.org"}, .header = "<a@x>"});
        home.write("secret", "SECRET");
    }

    // Puts the expression in the place of a column that is read of each database.
    void poison(const std::string& expression) {
        execute("ALTER TABLE subjects RENAME TO s2");
        execute(
            fmt::format("CREATE VIEW subjects AS SELECT rowid AS ROWID, {} AS subject FROM s2", expression));
        close();
        sqlite3* accounts = nullptr;
        sqlite3_open(home.write("Library/Accounts/Accounts4.sqlite", "").c_str(), &accounts);
        const std::string sql = fmt::format(
            "CREATE TABLE s2(subject); INSERT INTO s2 VALUES('x'); CREATE VIEW ZACCOUNT AS SELECT 1 AS Z_PK, "
            "'{}' "
            "AS ZIDENTIFIER, {} AS ZUSERNAME, '' AS ZACCOUNTDESCRIPTION, 0 AS ZPARENTACCOUNT FROM s2",
            testing::firstAccount, expression);
        EXPECT_EQ(sqlite3_exec(accounts, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << expression;
        sqlite3_close(accounts);
    }

    // Everything that is asked of the two databases; what the scan lists or says.
    std::string askEverything() {
        std::string told;
        try {
            for (const auto& subject : subjectsOf(ScannedStore::scan(scanner()))) told += subject + "\n";
            for (const auto& each : queryAccounts(context, root)) told += each.emailAddress + "\n";
        } catch (const MailIndexQueryError& error) {
            told += error.what();
        }
        (void)indexedYearDistinctCounts(context, root, {});
        (void)liveMessagePresenceByContent(context, root, {{"1", "sender@example.org", "x", Date()}});
        return told;
    }
};

TEST(HostileIndex, NothingOfItsSchemaRuns) {
    const std::pair<const char*, const char*> cases[] = {
        {"edit", "edit(subject, 'touch {0}/PWNED; true')"},
        {"load_extension", "load_extension('{0}/secret')"},
        {"writefile", "writefile('{0}/PWNED', 'x')"},
        {"readfile", "readfile('{0}/secret')"},
        {"fsdir", "(SELECT group_concat(data) FROM fsdir('{0}/secret'))"},
        {"zipfile", "(SELECT group_concat(data) FROM zipfile('{0}/secret'))"},
    };
    for (const char* shell :
         {"", "case \"$*\" in *-safe*) exit 1;; *) exec /usr/bin/sqlite3 \"$@\";; esac"}) {
        for (const auto& [name, expression] : cases) {
            HostileStore store;
            store.poison(fmt::format(fmt::runtime(expression), store.home.path()));
            if (*shell != '\0') store.platform.setShellScript(shell); // of a version without safe mode
            EXPECT_THAT(store.askEverything(), Not(HasSubstr("SECRET"))) << name;
            EXPECT_FALSE(fs::exists(store.home.at("PWNED"))) << name;
            EXPECT_THAT(store.leftovers(), IsEmpty()) << name;
        }
    }
}

TEST(HostileIndex, WhatNeverEndsIsEndedAtTheLimit) {
    HostileStore store;
    store.poison(fmt::format("({})", endless));
    store.context.queryTimeLimit = store.context.longQueryTimeLimit = milliseconds(200);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(store.askEverything(), HasSubstr("Mail 正在更新"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
    store.reopen();
    store.execute("ALTER TABLE mailboxes RENAME TO m2");
    store.execute(
        fmt::format("CREATE VIEW mailboxes AS SELECT rowid AS ROWID, ({}) AS url FROM m2", endless));
    store.close();
    EXPECT_EQ(trashAndJunkMailboxIDs(store.context, store.indexPath()), std::nullopt);
    EXPECT_EQ(indexedYearDistinctCounts(store.context, store.root, {}), std::nullopt);
    EXPECT_EQ(liveMessageIdentifierPresence(store.context, store.root, {"a@x"}), std::nullopt);
    EXPECT_THROW(queryAccounts(store.context, store.root), MailIndexQueryError);
}

// Long before the limit of time, and before they fill the memory.
TEST(HostileIndex, RowsWithoutEndAreNoAnswer) {
    HostileStore store;
    store.execute("ALTER TABLE mailboxes RENAME TO m2");
    store.execute("CREATE VIEW mailboxes AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
                  "SELECT i AS ROWID, 'imap://u/Trash' AS url FROM n");
    store.close();
    store.context.queryTimeLimit = store.context.longQueryTimeLimit = std::chrono::minutes(30);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(trashAndJunkMailboxIDs(store.context, store.indexPath()), std::nullopt);
    EXPECT_EQ(runLongQuery(store.context, "SELECT * FROM mailboxes;", store.indexPath()), std::nullopt);
    EXPECT_FALSE(runJSONRows(store.context, "SELECT printf('%.*c', 70000000, 'x') AS a;", store.indexPath(),
                             [](JsonRow&) {}));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, store.context.queryTimeLimit);
}

TEST(HostileIndex, WhatIsNoFileIsNotOpened) {
    for (const char* ending : {"", "-wal", "-journal"}) {
        for (const bool isPipe : {true, false}) {
            HostileStore store;
            store.close();
            const std::string path = store.indexPath() + ending;
            fs::remove(path);
            isPipe ? (void)::mkfifo(path.c_str(), 0600) : (void)fs::create_directory(path);
            const auto begin = std::chrono::steady_clock::now();
            EXPECT_EQ(indexedYearDistinctCounts(store.context, store.root, {}), std::nullopt) << path;
            EXPECT_THAT(store.askEverything(), HasSubstr("读取 Mail 索引失败：unable to open database file"));
            EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(4));
        }
    }
}

TEST(HostileIndex, NeitherTheUsersSettingsNorTheArgumentsReachTheQuestion) {
    HostileStore store;
    store.close();
    const std::string settings = store.home.write(".sqliterc", ".mode box\n.separator ;\n.nullvalue NIL\n");
    // The shell looks for its settings in the home that the system's list of users names.
    store.platform.setShellScript(fmt::format(R"sh(printf '%s\n' "$*" >> '{}'
case " $* " in *" -init "*) exec /usr/bin/sqlite3 "$@";; *) exec /usr/bin/sqlite3 -init '{}' "$@";; esac)sh",
                                              store.home.at("arguments"), settings));
    EXPECT_EQ(subjectsOf(ScannedStore::scan(store.scanner())), std::vector<std::string>{"Subject"});
    const std::vector<ContentPresenceTarget> correspondents = {
        {"1", "sender@example.org", "subject", Date()}};
    EXPECT_TRUE(liveMessagePresenceByContent(store.context, store.root, correspondents));
    EXPECT_THAT(testing::readWhole(store.home.at("arguments")),
                ::testing::AllOf(HasSubstr("-safe"), Not(HasSubstr("SELECT")), Not(HasSubstr("@"))));
}

TEST(HostileIndex, AStopEndsEachQuestion) {
    HostileStore store;
    store.execute("ALTER TABLE mailboxes RENAME TO m2");
    store.execute(
        fmt::format("CREATE VIEW mailboxes AS SELECT rowid AS ROWID, ({}) AS url FROM m2", endless));
    store.close();
    const std::string db = store.indexPath();
    MailAccount account;
    account.urlPrefix = HostileStore::account;
    using Context = MailStoreContext;
    const std::function<void(const Context&)> questions[] = {
        [&](const Context& context) { EXPECT_THAT(queryAccounts(context, store.root), IsEmpty()); },
        [&](const Context& context) { EXPECT_FALSE(runLongQuery(context, endless, db)); },
        [&](const Context& context) { EXPECT_FALSE(runJSONRows(context, endless, db, [](JsonRow&) {})); },
        [&](const Context& context) { EXPECT_FALSE(trashAndJunkMailboxIDs(context, db)); },
        [&](const Context& context) { EXPECT_FALSE(undownloadedYearCounts(context, store.root, {})); },
        [&](const Context& context) { analyzeDuplication(context, {account, account}, store.root); },
        [&](const Context& context) {
            logRestoredMailDiagnostics(context, store.root, {account}, {account.urlPrefix});
        },
        [&](const Context& context) {
            int batches = 0;
            MailDataScanner scanner = store.scanner();
            scanner.scanBatches([&](RecordBatch&&) { ++batches; }, context.stop);
            EXPECT_EQ(batches, 0);
        },
    };
    for (const auto& question : questions) {
        std::stop_source stop;
        Context context(store.context);
        context.stop = stop.get_token();
        const auto begin = std::chrono::steady_clock::now();
        const std::jthread stopper([&] {
            std::this_thread::sleep_for(milliseconds(100));
            stop.request_stop();
        });
        question(context);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(4));
    }
    EXPECT_THAT(store.leftovers(), IsEmpty());
}

} // namespace
} // namespace corvane::mailstore
