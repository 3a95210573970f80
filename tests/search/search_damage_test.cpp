#include <atomic>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <thread>

#include <gmock/gmock.h>

#include "search/search_fixture.h"
#include "support/faulty_sqlite_files.h"
#include "support/unprivileged.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

std::vector<SearchIndexRow> manyRows(int first, int count) {
    std::vector<SearchIndexRow> rows;
    for (int number = first; number < first + count; ++number) {
        rows.push_back({std::to_string(number), "subject", "a@example.com", "", "",
                        "body of " + std::to_string(number) + " 报告 " + std::string(300, 'x')});
    }
    return rows;
}

// Everything that can be asked of an index, for what it does to the process.
void useEverything(MailSearchIndex& index) {
    for (const char* query : {"body of 17", "subject", "报告", "none at all"})
        static_cast<void>(index.search(query));
    for (const char* id : {"0", "17", "999", "none"}) static_cast<void>(index.body(id));
    static_cast<void>(index.indexedIDs());
    static_cast<void>(index.bodyStates());
    index.bulkInsert(manyRows(5000, 3));
    index.remove("17");
}

class DamageTest : public SearchTest {
  protected:
    // A sound database without side files, as bytes.
    [[nodiscard]] std::string soundBytes() {
        {
            const auto index = open();
            for (int batch = 0; batch < 10; ++batch) index->bulkInsert(manyRows(batch * 100, 100));
        }
        EXPECT_FALSE(fs::exists(path() + "-wal"));
        return readWhole(path());
    }

    void replaceFile(std::string_view bytes) const {
        for (const char* suffix : {"-wal", "-shm"}) fs::remove(path() + suffix);
        std::ofstream(path(), std::ios::binary) << bytes;
    }

    void expectHealed() const {
        const auto index = MailSearchIndex::openReset(support_, root_);
        ASSERT_NE(index, nullptr);
        EXPECT_TRUE(index->indexedIDs()->empty());
        index->bulkInsert(manyRows(0, 20));
        EXPECT_EQ(index->search("body of 1").size(), 11U);
        EXPECT_FALSE(index->isDamaged());
    }
};

TEST_F(DamageTest, Damage_AFileThatIsNoDatabaseIsReplacedOnlyByWhoMayBeginAnew) {
    for (const std::string& bytes : {std::string(5000, 'x'), std::string("SQLite format 3\0garbage", 23),
                                     std::string("SQLite format 3\0", 16) + std::string(8000, '\xFF')}) {
        replaceFile(bytes);
        EXPECT_EQ(open(), nullptr);
        EXPECT_EQ(readWhole(path()), bytes) << "opening leaves the file";
        const auto index = MailSearchIndex::openOrReset(support_, root_);
        ASSERT_NE(index, nullptr);
        index->bulkInsert(std::vector{rowOf("a", "text")});
        EXPECT_EQ(open()->body("a"), "text");
    }
    fs::remove_all(path());
    fs::create_directory(path());
    EXPECT_EQ(open(), nullptr);
    EXPECT_EQ(MailSearchIndex::openOrReset(support_, root_), nullptr);
    EXPECT_TRUE(fs::is_directory(path()));
}

TEST_F(DamageTest, Damage_ATruncatedOrScribbledFileStopsNothingAndIsBegunAnew) {
    const std::string sound = soundBytes();
    std::mt19937 random(3);
    const auto below = [&](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    int noticed = 0;
    for (int round = 0; round < 40; ++round) {
        std::string bytes = sound;
        if (round % 2 == 0) {
            bytes.resize(below(bytes.size()));
        } else {
            for (int i = 0; i < 40; ++i) bytes[below(bytes.size())] = static_cast<char>(below(256));
        }
        replaceFile(bytes);
        if (const auto index = MailSearchIndex::openOrReset(support_, root_)) {
            useEverything(*index);
            noticed += index->isDamaged() ? 1 : 0;
        }
        expectHealed();
    }
    EXPECT_GT(noticed, 3);
}

TEST_F(DamageTest, Damage_ResetWhileOthersHaveTheFileOpenLeavesThemReadingAndWriting) {
    const auto reader = open();
    reader->bulkInsert(manyRows(0, 50));
    EXPECT_TRUE(reader->body("7"));
    const auto anew = MailSearchIndex::openReset(support_, root_);
    ASSERT_NE(anew, nullptr);
    EXPECT_EQ(reader->body("7"), std::nullopt);
    anew->bulkInsert(std::vector{rowOf("7", "new")});
    EXPECT_EQ(reader->body("7"), "new");
    EXPECT_EQ(reader->search("new").size(), 1U);
}

TEST_F(DamageTest, Damage_AForeignSchemaRunsNothingAndReadsAsDamaged) {
    open()->bulkInsert(std::vector{rowOf("a", "kept")});
    run("CREATE TABLE victim(x); INSERT INTO victim VALUES(1);"
        "CREATE TRIGGER t AFTER INSERT ON record_map BEGIN DELETE FROM victim; END;");
    open()->bulkInsert(std::vector{rowOf("b", "text")});
    EXPECT_EQ(number("SELECT count(*) FROM victim;"), 1) << "its triggers don't run";
    run("DROP TABLE email_fts; CREATE VIEW email_fts AS SELECT 'v' AS record_id, 's' AS subject, '' AS "
        "sender,"
        "'' AS recipients, '' AS attachments, 'planted' AS body, 1 AS rowid;");
    const auto index = open();
    ASSERT_NE(index, nullptr);
    EXPECT_TRUE(index->search("planted").empty());
    EXPECT_EQ(index->indexedIDs(), std::nullopt);
    EXPECT_TRUE(index->isDamaged());
    expectHealed();
}

TEST_F(DamageTest, Damage_AFolderThatCantBeWrittenToGivesNoIndexOrOneThatReads) {
    const std::string folder = support_.baseDirectory(true);
    for (fs::path part = folder; part != fs::path(home_.path()).parent_path(); part = part.parent_path())
        fs::permissions(part, fs::perms(0555));
    {
        const Unprivileged nobody;
        EXPECT_EQ(open(), nullptr) << "none can be made";
    }
    fs::permissions(folder, fs::perms(0755));
    replaceFile(soundBytes());
    fs::permissions(path(), fs::perms(0444));
    fs::permissions(folder, fs::perms(0555));
    {
        const Unprivileged nobody;
        if (const auto index = open()) useEverything(*index);
    }
    fs::permissions(folder, fs::perms(0755));
    EXPECT_EQ(open()->indexedIDs()->size(), 1000U);
}

TEST_F(DamageTest, Full_ADiskThatFillsUpCountsOnlyTheRowsThatStay) {
    bool hasFailed = true;
    for (int operation = 1; hasFailed; ++operation) {
        FaultySqliteFiles files;
        const std::size_t before = open()->indexedIDs()->size();
        std::size_t inserted = 0;
        {
            const auto index = open();
            files.failAt(operation, SqliteFault::full, true);
            inserted = index->bulkInsert(manyRows(operation * 10, 2));
            hasFailed = files.hasFailed();
        }
        files.heal();
        EXPECT_EQ(open()->indexedIDs()->size() - before, inserted) << operation;
    }
}

TEST_F(DamageTest, Lock_ThatStaysCostsTheWriterItsRowsAndReadersNothing) {
    const auto index = open();
    index->bulkInsert(std::vector{rowOf("a", "first")});
    const auto other = foreign();
    ASSERT_EQ(sqlite3_exec(other.get(), "BEGIN EXCLUSIVE;", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(index->body("a"), "first");
    EXPECT_EQ(index->search("first").size(), 1U);
    index->bulkInsert(std::vector{rowOf("b", "lost")});
    EXPECT_EQ(index->indexedIDs()->size(), 1U);
    EXPECT_FALSE(index->isDamaged());
    sqlite3_exec(other.get(), "ROLLBACK;", nullptr, nullptr, nullptr);
    index->bulkInsert(std::vector{rowOf("b", "second")});
    EXPECT_EQ(index->body("b"), "second");
}

TEST_F(DamageTest, Threads_ReadOneInstanceWhileTwoOthersWrite) {
    constexpr int batches = 12;
    constexpr int batchSize = 40;
    const auto index = open();
    std::atomic<int> writers = 2;
    const auto write = [&](int first) {
        const auto own = open();
        for (int batch = 0; batch < batches; ++batch) {
            const int start = first + batch * batchSize;
            own->bulkInsert(manyRows(start, batchSize));
        }
        --writers;
    };
    const auto read = [&](unsigned seed) {
        std::mt19937 random(seed);
        while (writers > 0) {
            const int number = static_cast<int>(random() % (batches * batchSize));
            const auto body = index->body(std::to_string(number));
            const std::string start = "body of " + std::to_string(number) + " 报告";
            EXPECT_TRUE(body.value_or(start).starts_with(start));
            for (const SharedText& id : index->search(start)) EXPECT_EQ(id, std::to_string(number));
        }
    };
    std::vector<std::jthread> threads;
    threads.emplace_back(write, 0);
    threads.emplace_back(write, 100000);
    for (unsigned seed = 1; seed <= 3; ++seed) threads.emplace_back(read, seed);
    threads.clear();
    EXPECT_EQ(index->indexedIDs()->size(), 2U * batches * batchSize);
    EXPECT_EQ(index->search("报告").size(), 2U * batches * batchSize);
}

} // namespace
} // namespace corvane::testing
