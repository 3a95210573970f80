#include <filesystem>
#include <fstream>
#include <optional>
#include <utility>

#include <gmock/gmock.h>

#include "search/search_fixture.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::UnorderedElementsAre;

TEST_F(SearchTest, Index_FindsEveryColumnLiterallyAndHandsBackBodies) {
    const auto index = open();
    ASSERT_NE(index, nullptr);
    index->bulkInsert(std::vector<SearchIndexRow>{
        {"s", "Quarterly Report", "", "", "", "x"},
        {"f", "", "Zoë <zoe@example.com>", "", "", "x"},
        {"r", "", "", "李雷 <lilei@example.cn>", "", "x"},
        {"a", "", "", "", "合同 final_v2.pdf 100%.xlsx", "x"},
        {"b", "", "", "", "", "back\\slash, 会议在周一, say \"hi\" 😀😀 100 percent"}});
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"quarterly", {"s"}}, {"  Report\n", {"s"}},
        {"ZOE@", {"f"}},      {"ZOË", {}}, // only ASCII letters have two cases
        {"Zoë", {"f"}},       {"李雷", {"r"}},
        {"雷", {"r"}},        {"example.c", {"f", "r"}},
        {"100%", {"a"}},      {"l_v", {"a"}},
        {"_", {"a"}},         {"k\\s", {"b"}},
        {"\\", {"b"}},        {"say \"hi\"", {"b"}},
        {"\"", {"b"}},        {"在周一", {"b"}},
        {"😀😀 1", {"b"}},    {"mid:", {}}, // ids aren't searched
        {"NEAR(a b)", {}},    {"", {}},
        {" \t\r\n\u3000", {}}};
    for (const auto& [query, ids] : cases) {
        std::vector<std::string> found;
        for (const SharedText& id : index->search(query)) found.push_back(id.str());
        EXPECT_THAT(found, ::testing::UnorderedElementsAreArray(ids)) << query;
    }
    EXPECT_EQ(index->body("s"), "x");
    EXPECT_EQ(index->body("none"), std::nullopt);
}

TEST_F(SearchTest, Index_KnowsWhichBodiesCountAsEmpty) {
    const auto index = open();
    index->bulkInsert(std::vector{rowOf("full", "  text \n"), rowOf("none", ""),
                                  rowOf("blank", " \n\t\u2028"), rowOf("placeholder", "\n暂无正文预览 ")});
    run("INSERT INTO email_fts(record_id, subject) VALUES('null', 's');"
        "INSERT INTO record_map SELECT 'null', max(rowid) FROM email_fts;");
    EXPECT_EQ(index->body("full"), "  text \n");
    for (const char* id : {"none", "blank", "placeholder", "null"}) EXPECT_EQ(index->body(id), std::nullopt);
    EXPECT_THAT(index->indexedIDsWithNonEmptyBody(), UnorderedElementsAre(SharedText("full")));
    EXPECT_EQ(index->emptyBodyIDs().size(), 4U);
    EXPECT_EQ(index->indexedIDs()->size(), 5U);
}

TEST_F(SearchTest, Index_AddsBesideAnOlderRowAndTheLaterOneAnswers) {
    const auto index = open();
    index->bulkInsert(std::vector{rowOf("a", ""), rowOf("b", "other")});
    index->bulkInsert(std::vector{rowOf("a", "second")});
    EXPECT_EQ(number("SELECT count(*) FROM email_fts;"), 3);
    EXPECT_EQ(index->body("a"), "second");
    index->remove("unknown");
    EXPECT_EQ(number("SELECT count(*) FROM email_fts;"), 3);
    index->remove("a");
    EXPECT_EQ(index->body("a"), std::nullopt);
    EXPECT_EQ(index->ftsRowID("a"), std::nullopt);
    EXPECT_EQ(number("SELECT count(*) FROM email_fts;"), 2) << "the older row stays";
    EXPECT_TRUE(index->search("second").empty());
}

TEST_F(SearchTest, Index_ClearedIsEmptyAndGoesOn) {
    const auto index = open();
    const auto reader = open();
    index->bulkInsert(std::vector{rowOf("a", "hello"), rowOf("b", "world")});
    EXPECT_EQ(reader->body("a"), "hello");
    index->clear();
    EXPECT_TRUE(index->indexedIDs()->empty());
    EXPECT_EQ(reader->body("a"), std::nullopt);
    EXPECT_TRUE(reader->search("hello").empty());
    index->bulkInsert(std::vector{rowOf("a", "again")});
    EXPECT_EQ(reader->body("a"), "again");
    EXPECT_THAT(reader->search("gai"), UnorderedElementsAre(SharedText("a")));
    EXPECT_EQ(index->metaInt("record_map_built"), 1);
}

TEST_F(SearchTest, Index_KeepsTextsWithZerosAndBadBytes) {
    const auto index = open();
    const std::string zeros("before\0after", 12);
    const std::string bad = "ok \xC3\x28 \x80\xFF end";
    index->bulkInsert(std::vector{rowOf("zeros", zeros), rowOf("bad", bad)});
    EXPECT_EQ(index->body("zeros"), zeros);
    EXPECT_EQ(index->body("bad"), bad);
    EXPECT_THAT(index->search("before"), UnorderedElementsAre(SharedText("zeros")));
    EXPECT_TRUE(index->search("after").empty()) << "LIKE ends at a zero";
    EXPECT_THAT(index->search("end"), UnorderedElementsAre(SharedText("bad")));
}

TEST_F(SearchTest, Meta_ReadsOnlyDecimalNumbers) {
    const auto index = open();
    EXPECT_EQ(index->metaInt("extractor_version"), 9);
    for (const char* none : {"", "7 ", "9223372036854775808", "x"}) {
        index->setMeta("k", none);
        EXPECT_EQ(index->metaInt("k"), MailSearchIndex::noMetaValue) << none;
    }
    EXPECT_EQ(index->metaInt("absent"), MailSearchIndex::noMetaValue);
    run("INSERT OR REPLACE INTO meta VALUES('null', NULL);");
    EXPECT_EQ(index->metaInt("null"), MailSearchIndex::noMetaValue);
}

TEST_F(SearchTest, RecordMap_IsBuiltOnceForAnOldDatabase) {
    open()->bulkInsert(std::vector{rowOf("a", "first"), rowOf("a", "last")});
    run("DELETE FROM record_map; DELETE FROM meta;");
    EXPECT_EQ(open()->body("a"), "last");
    EXPECT_EQ(number("SELECT value FROM meta WHERE key = 'extractor_version';"), 9);
    run("DELETE FROM record_map;");
    EXPECT_EQ(open()->body("a"), std::nullopt) << "never again";
}

TEST_F(SearchTest, Files_OnePathOneDatabaseWhateverItsSlash) {
    EXPECT_EQ(search::databaseFileName("/a/b"), search::databaseFileName("/a/b/"));
    EXPECT_NE(search::databaseFileName("/a/b"), search::databaseFileName("/a/c"));
    EXPECT_EQ(search::databaseFileName("/a/b"), "search-c42d96f5bd567076.sqlite");
    EXPECT_EQ(search::normalizedKeyPath("/"), "/");
}

TEST_F(SearchTest, Files_TakesOverTheDatabaseOfTheSlashedPath) {
    open()->bulkInsert(std::vector{rowOf("a", "kept")});
    const fs::path current = path();
    const fs::path legacy = current.parent_path() / "legacy.sqlite";
    fs::rename(current, legacy);
    // The name that the hash gives to the path with its slash.
    const std::string slashed = support_.filePath("search-" + slashedKey(root_) + ".sqlite");
    fs::rename(legacy, slashed);
    std::ofstream(slashed + "-shm") << "";
    EXPECT_EQ(open()->body("a"), "kept");
    EXPECT_FALSE(fs::exists(slashed));
    std::ofstream(slashed) << "another";
    EXPECT_EQ(open()->body("a"), "kept");
    EXPECT_TRUE(fs::exists(slashed)) << "an existing database is not replaced";
}

TEST_F(SearchTest, Files_PruningLeavesLiveOnesAndWhatIsNotOurs) {
    const std::string other = home_.at("other");
    const auto kept = open();
    kept->bulkInsert(std::vector{rowOf("a", "text")});
    const auto orphan = MailSearchIndex::open(support_, other);
    orphan->bulkInsert(std::vector{rowOf("b", "text")});
    const std::string orphanPath = search::databaseURL(support_, other)->path().str();
    for (const char* name : {"search-notes.txt", "last-scan-cache.json", "mysearch-1.sqlite"})
        support_.writeFile(name, "");
    MailSearchIndex::pruneOrphans(support_, std::vector{root_ + "/"});
    for (const char* suffix : {"", "-wal", "-shm"}) {
        EXPECT_FALSE(fs::exists(orphanPath + suffix));
        EXPECT_TRUE(fs::exists(path() + suffix)) << suffix;
    }
    EXPECT_TRUE(fs::exists(support_.filePath("search-notes.txt")));
    EXPECT_TRUE(fs::exists(support_.filePath("mysearch-1.sqlite")));
    EXPECT_EQ(orphan->body("b"), "text") << "who has it open reads on";
    MailSearchIndex::pruneOrphans(support_, {});
    EXPECT_FALSE(fs::exists(path()));
    MailSearchIndex::pruneOrphans(CorvaneAppSupport(TemporaryHome().platform()), {});
}

} // namespace
} // namespace corvane::testing
