#include "archive/bodies/body_indexing.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>

#include <gmock/gmock.h>

#include "records/archive_files/archive_index_file.h"
#include "search/mail_search_index.h"
#include "search/search_index_files.h"
#include "support/temporary_home.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

class BodyIndexingTest : public ::testing::Test {
  protected:
    void addMessage(const std::string& id, const std::string& path = "") {
        ArchivedEmailRecord record;
        record.id = id;
        record.subject = "subject of " + id;
        record.sender = "sender@example.com";
        record.attachmentNames = {"合同.pdf", "b.txt"};
        record.emlRelativePath = path.empty() ? "2020/a/" + id + ".eml" : path;
        if (path.empty()) home_.write("archive/" + record.emlRelativePath.str(), "Subject: x\r\n\r\n");
        archive_.records.push_back(record);
    }

    std::int64_t rebuild(bool force = false, const std::stop_token& stop = {}) {
        home_.write("archive/archive-index.json", encodeArchiveIndex(archive_));
        progress_.clear();
        calls_ = 0;
        return BodyIndexing(support_, source_)
            .rebuildSearchIndex(
                root_, force, [&](auto done, auto total) { progress_.emplace_back(done, total); }, stop);
    }

    [[nodiscard]] std::unique_ptr<MailSearchIndex> open() const {
        return MailSearchIndex::open(support_, root_);
    }

    testing::TemporaryHome home_;
    CorvaneAppSupport support_{home_.platform()};
    std::string root_ = home_.makeFolder("archive");
    EmailArchiveIndex archive_;
    std::vector<std::pair<std::int64_t, std::int64_t>> progress_;
    std::atomic<int> calls_ = 0;
    // Gives each file its name as text.
    BodyTextSource source_ = [this](const std::vector<FileURL>& files, const std::stop_token&) {
        ++calls_;
        BodyTextByPath texts;
        for (const FileURL& file : files)
            texts.emplace(file.path(), "正文 " + std::string(file.lastPathComponent()));
        return texts;
    };
};

TEST_F(BodyIndexingTest, Rebuild_IndexesWhatIsThereAndASecondRunDoesNothing) {
    for (const char* id : {"a", "b", "b"}) addMessage(id);
    addMessage("gone", "2020/a/gone.eml");
    EXPECT_EQ(rebuild(), 2) << "a repeated id is one message";
    EXPECT_THAT(progress_, ElementsAre(std::pair(0, 2), std::pair(2, 2)));
    const auto index = open();
    EXPECT_EQ(index->body("a"), "正文 a.eml");
    EXPECT_EQ(index->indexedIDs()->size(), 2U);
    EXPECT_THAT(index->search("合同.pdf b.txt"), UnorderedElementsAre(SharedText("a"), SharedText("b")));
    EXPECT_EQ(rebuild(), 0);
    EXPECT_THAT(progress_, ElementsAre(std::pair(0, 0)));
    EXPECT_EQ(calls_, 0);
    addMessage("c");
    EXPECT_EQ(rebuild(), 1);
    EXPECT_EQ(index->indexedIDs()->size(), 3U);
}

TEST_F(BodyIndexingTest, Rebuild_ReadsNothingOutsideOfTheArchive) {
    home_.write("secret/s.eml", "Subject: secret\r\n\r\n");
    addMessage("inside");
    addMessage("climbs", "../secret/s.eml");
    addMessage("absolute", home_.at("secret/s.eml"));
    addMessage("byFolderLink", "2020/link/s.eml");
    fs::create_directory_symlink(home_.at("secret"), home_.at("archive/2020/link"));
    addMessage("byLink", "2020/a/link.eml");
    fs::create_symlink(home_.at("secret/s.eml"), home_.at("archive/2020/a/link.eml"));
    addMessage("folder", "2020/a");
    EXPECT_EQ(rebuild(), 1);
    EXPECT_THAT(*open()->indexedIDs(), UnorderedElementsAre(SharedText("inside")));
}

TEST_F(BodyIndexingTest, Rebuild_TriesEmptyBodiesAgainAndKeepsAFullOneBesideAnEmptyOne) {
    for (const char* id : {"a", "b", "both"}) addMessage(id);
    const BodyTextSource working = source_;
    source_ = [](const auto&, const auto&) -> BodyTextByPath { throw std::runtime_error("no worker"); };
    EXPECT_EQ(rebuild(), 3);
    const auto index = open();
    EXPECT_EQ(index->search("subject of").size(), 3U) << "found by what is known";
    EXPECT_EQ(index->emptyBodyIDs().size(), 3U);
    index->bulkInsert(std::vector{searchIndexRow(archive_.records[2], "filled on demand")});
    index->bulkInsert(std::vector<SearchIndexRow>{{"of no record", "", "", "", "", ""}});
    source_ = working;
    EXPECT_EQ(rebuild(), 2);
    EXPECT_EQ(index->body("a"), "正文 a.eml");
    EXPECT_EQ(index->body("both"), "filled on demand");
    EXPECT_TRUE(index->emptyBodyIDs().contains("of no record"));
    EXPECT_EQ(rebuild(), 0);
    EXPECT_EQ(index->body("both"), "filled on demand");
}

TEST_F(BodyIndexingTest, Rebuild_ForcedEmptiesTheIndexEvenWhenTheFilesAreAway) {
    for (const char* id : {"a", "b"}) addMessage(id);
    rebuild();
    EXPECT_EQ(rebuild(true), 2);
    EXPECT_EQ(calls_, 1);
    EXPECT_EQ(open()->indexedIDs()->size(), 2U);
    fs::rename(home_.at("archive/2020"), home_.at("elsewhere"));
    EXPECT_EQ(rebuild(), 0);
    EXPECT_EQ(open()->body("a"), "正文 a.eml") << "an archive that is away keeps its rows";
    EXPECT_EQ(rebuild(true), 0);
    EXPECT_TRUE(open()->indexedIDs()->empty());
    fs::rename(home_.at("elsewhere"), home_.at("archive/2020"));
    EXPECT_EQ(rebuild(), 2);
}

TEST_F(BodyIndexingTest, Rebuild_BeginsADamagedDatabaseAnew) {
    for (int i = 0; i < 400; ++i) addMessage(std::to_string(i));
    rebuild();
    const std::string path = search::databaseURL(support_, root_)->path().str();
    const std::string sound = testing::readWhole(path);
    std::string noDatabase(3000, 'x');
    std::string scribbled = sound;
    for (std::size_t i = 8192; i < scribbled.size(); i += 512) scribbled.replace(i, 8, 8, '\xA5');
    const std::string cut = sound.substr(0, sound.size() / 2);
    for (const std::string& bytes : {noDatabase, scribbled, cut}) {
        for (const char* suffix : {"-wal", "-shm"}) fs::remove(path + suffix);
        std::ofstream(path, std::ios::binary) << bytes;
        rebuild();
        EXPECT_EQ(open()->indexedIDsWithNonEmptyBody().size(), 400U);
        EXPECT_EQ(open()->search("正文").size(), 400U);
    }
}

TEST_F(BodyIndexingTest, Batches_AreBounded) {
    for (int i = 0; i < 151; ++i) addMessage(std::to_string(i));
    std::mutex mutex;
    std::multiset<std::size_t> sizes;
    const BodyTextSource counted = [&](const std::vector<FileURL>& files, const std::stop_token& stop) {
        {
            const std::scoped_lock lock(mutex);
            sizes.insert(files.size());
        }
        return source_(files, stop);
    };
    const auto items = bodyIndexItems(root_, archive_.records);
    std::int64_t last = 0;
    BodyIndexing(support_, counted).indexBodies(items, *open(), 150, [&](auto done, auto total) {
        EXPECT_GE(done, last);
        EXPECT_EQ(total, 151);
        last = done;
    });
    EXPECT_THAT(sizes, ElementsAre(1, 150));
    EXPECT_EQ(last, 151);
}

TEST_F(BodyIndexingTest, Stop_KeepsWholeBatchesAndWritesNoEmptyOnes) {
    for (int i = 0; i < 1000; ++i) addMessage(std::to_string(i));
    std::stop_source stop;
    const BodyTextSource working = source_;
    source_ = [&](const std::vector<FileURL>& files, const std::stop_token& token) {
        if (calls_ == 3) stop.request_stop();
        if (token.stop_requested()) throw std::runtime_error("stopped");
        return working(files, token);
    };
    rebuild(false, stop.get_token());
    const std::size_t kept = open()->indexedIDs()->size();
    EXPECT_EQ(kept % 150, 0U);
    EXPECT_LT(kept, 1000U);
    EXPECT_TRUE(open()->emptyBodyIDs().empty());
    source_ = working;
    EXPECT_EQ(rebuild(), static_cast<std::int64_t>(1000 - kept));
    EXPECT_EQ(open()->indexedIDsWithNonEmptyBody().size(), 1000U);
}

TEST_F(BodyIndexingTest, Rows_ThatSomebodyElseAddedMeanwhileAreLeftOut) {
    for (const char* id : {"a", "b"}) addMessage(id);
    const BodyTextSource working = source_;
    source_ = [&](const std::vector<FileURL>& files, const std::stop_token& stop) {
        open()->bulkInsert(std::vector{searchIndexRow(archive_.records[0], "of another process")});
        return working(files, stop);
    };
    rebuild();
    EXPECT_EQ(open()->body("a"), "of another process");
    EXPECT_EQ(open()->search("subject of").size(), 2U);
    EXPECT_TRUE(open()->search("正文 a").empty());
}

} // namespace
} // namespace corvane
