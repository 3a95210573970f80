// A disk that fails at each operation of SQLite in turn while bodies are indexed and searched.
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

#include "archive/bodies/body_indexing.h"
#include "platform/sqlite.h"
#include "records/archive_files/archive_index_file.h"
#include "search/mail_search_index.h"
#include "search/search_index_files.h"
#include "support/faulty_sqlite_files.h"
#include "support/temporary_home.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

struct FaultCase {
    SqliteFault fault;
    bool isLasting;
};

constexpr const char* queries[] = {"正文 1",   "正文", "文", "ubject of 3",
                                   "合同.pdf", "of",   "o",  "none at all"};

class BodyIndexingFaultsTest : public ::testing::TestWithParam<FaultCase> {
  protected:
    static constexpr int messages = 12;
    static constexpr int indexedBefore = 5;
    static constexpr int emptyBefore = 2;

    void SetUp() override {
        EmailArchiveIndex archive;
        for (int number = 0; number < messages; ++number) {
            ArchivedEmailRecord record;
            record.id = std::to_string(number);
            record.subject = "subject of " + std::to_string(number);
            record.attachmentNames = {"合同.pdf"};
            record.emlRelativePath = std::to_string(number) + ".eml";
            home_.write("archive/" + record.emlRelativePath.str(), "Subject: x\r\n\r\n");
            archive.records.push_back(record);
        }
        home_.write("archive/archive-index.json", encodeArchiveIndex(archive));
        begin(archive);
    }

    // An index of some of the messages, of which some came out empty.
    void begin(const EmailArchiveIndex& archive) {
        const auto index = MailSearchIndex::openOrReset(support_, root_);
        for (int number = 0; number < indexedBefore; ++number)
            index->bulkInsert(std::vector{searchIndexRow(
                archive.records[number], number < emptyBefore ? "" : "正文 " + std::to_string(number))});
        path_ = search::databaseURL(support_, root_)->path().str();
        // Pages that are still in the log.
        for (const char* suffix : {"", "-wal"}) begun_.push_back(readWhole(path_ + suffix));
    }

    void beginAgain() const {
        fs::remove(path_ + "-shm");
        std::ofstream(path_, std::ios::binary) << begun_[0];
        std::ofstream(path_ + "-wal", std::ios::binary) << begun_[1];
    }

    void indexBodies() const {
        const BodyTextSource texts = [](const std::vector<FileURL>& files, const std::stop_token&) {
            BodyTextByPath found;
            for (const FileURL& file : files)
                found.emplace(file.path(), "正文 " + std::string(file.lastPathComponent()));
            return found;
        };
        BodyIndexing(support_, texts).rebuildSearchIndex(root_, false, [](auto, auto) {});
    }

    // What the statement that the index stands for finds, on a connection of its own.
    [[nodiscard]] std::set<std::string> byStatement(std::string_view text) const {
        sqlite3* handle = nullptr;
        EXPECT_EQ(sqlite3_open(path_.c_str(), &handle), SQLITE_OK);
        const platform::SqliteConnection database(handle);
        platform::SqliteStatement statement(handle,
                                            "SELECT record_id FROM email_fts WHERE subject LIKE ?1 OR "
                                            "sender LIKE ?1 OR recipients LIKE ?1 OR attachments LIKE ?1 "
                                            "OR body LIKE ?1;");
        statement.bindText(1, "%" + std::string(text) + "%");
        std::set<std::string> ids;
        while (statement.step()) ids.emplace(statement.text(0).value());
        EXPECT_EQ(statement.status(), SQLITE_DONE);
        return ids;
    }

    void expectWhole() const {
        const auto index = MailSearchIndex::open(support_, root_);
        ASSERT_NE(index, nullptr);
        EXPECT_EQ(index->indexedIDs().value().size(), std::size_t{messages});
        for (int number = 0; number < messages; ++number)
            EXPECT_THAT(index->body(std::to_string(number)),
                        ::testing::Optional(::testing::StartsWith("正文")));
        for (const char* query : queries) {
            const auto found = index->searchIfReadable(query).value();
            EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), byStatement(query)) << query;
        }
        EXPECT_FALSE(index->isDamaged());
    }

    TemporaryHome home_;
    CorvaneAppSupport support_{home_.platform()};
    std::string root_ = home_.makeFolder("archive");
    std::string path_;
    std::vector<std::string> begun_;
};

// Every operation at first, where the files are opened, then some of the many.
int next(int operation) {
    return operation + 1 + operation / 20;
}

TEST_P(BodyIndexingFaultsTest, IndexingThatMeetsAFaultIsMadeWholeByTheNextRun) {
    FaultySqliteFiles files;
    bool hasFailed = true;
    for (int operation = 1; hasFailed; operation = next(operation)) {
        SCOPED_TRACE(operation);
        beginAgain();
        files.failAt(operation, GetParam().fault, GetParam().isLasting);
        indexBodies();
        hasFailed = files.hasFailed();
        files.heal();
        indexBodies();
        expectWhole();
        if (HasFailure()) return;
    }
}

TEST_P(BodyIndexingFaultsTest, SearchesThatMeetAFaultFindAllOrSayThatTheyCouldNotLook) {
    FaultySqliteFiles files;
    indexBodies();
    bool hasFailed = true;
    for (int operation = 1; hasFailed; operation = next(operation)) {
        SCOPED_TRACE(operation);
        const auto index = MailSearchIndex::open(support_, root_);
        ASSERT_NE(index, nullptr);
        files.failAt(operation, GetParam().fault, GetParam().isLasting);
        std::vector<std::optional<SharedTextSet>> answers;
        for (const char* query : queries) answers.push_back(index->searchIfReadable(query));
        hasFailed = files.hasFailed();
        files.heal();
        for (std::size_t i = 0; i < answers.size(); ++i) {
            if (!answers[i]) continue;
            EXPECT_EQ(std::set<std::string>(answers[i]->begin(), answers[i]->end()), byStatement(queries[i]))
                << queries[i];
        }
        if (HasFailure()) return;
    }
}

std::string nameOf(const ::testing::TestParamInfo<FaultCase>& info) {
    const char* fault = info.param.fault == SqliteFault::error  ? "Error"
                        : info.param.fault == SqliteFault::full ? "FullDisk"
                                                                : "LostLock";
    return std::string(fault) + (info.param.isLasting ? "Lasting" : "Once");
}

INSTANTIATE_TEST_SUITE_P(
    Faults, BodyIndexingFaultsTest,
    ::testing::Values(FaultCase{SqliteFault::error, false}, FaultCase{SqliteFault::error, true},
                      FaultCase{SqliteFault::full, false}, FaultCase{SqliteFault::full, true},
                      FaultCase{SqliteFault::lockLost, false}, FaultCase{SqliteFault::lockLost, true}),
    nameOf);

} // namespace
} // namespace corvane::testing
