#include "model/library/body_texts.h"

#include <atomic>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <utility>

#include <gmock/gmock.h>

#include "locations/archive_samples.h"
#include "locations/known_locations.h"
#include "model/model_test.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::UnorderedElementsAre;

class BodyTextsTest : public ModelTest {
  protected:
    // The archives with these ids, loaded.
    void load(std::initializer_list<std::pair<const char*, std::initializer_list<std::string>>> archives) {
        int createdAt = 1;
        std::vector<std::string> roots;
        for (const auto& [folder, ids] : archives)
            roots.push_back(writeArchive(home_, folder, sampleIndex(++createdAt, ids)));
        setKnownLocations(context_.settings, roots);
        reload();
    }

    void reload() {
        loader_.loadEmailArchiveIndex(std::nullopt, true);
        waitUntilIdle(context_.tasks);
    }

    [[nodiscard]] ArchivedEntry entry(std::string_view id) const {
        for (const ArchivedEntry& entry : *loader_.archivedEntries()) {
            if (entry.record.id == id) return entry;
        }
        ADD_FAILURE() << "no entry " << id;
        return {};
    }

    template <class Ask>
    std::optional<std::string> answer(Ask ask) {
        std::optional<std::string> text = "not answered";
        ask([&](const std::optional<std::string>& given) { text = given; });
        waitUntilIdle(context_.tasks);
        return text;
    }

    std::optional<std::string> prepared(const ArchivedEntry& entry) {
        return answer([&](auto answer) { texts_.prepareIndexedBody(entry, answer); });
    }

    std::optional<std::string> indexed(const ArchivedEntry& entry) {
        return answer([&](auto answer) { texts_.indexedBody(entry.record, answer); });
    }

    std::optional<std::string> cc(const ArchivedEntry& entry) {
        return answer([&](auto answer) { texts_.ccRecipients(entry, answer); });
    }

    SharedTextSet found(const std::string& query) {
        SharedTextSet ids{"not answered"};
        texts_.searchArchive(query, [&](const ArchiveSearchResult& given) { ids = given.ids; });
        waitUntilIdle(context_.tasks);
        return ids;
    }

    void rebuild(bool force = false) {
        texts_.rebuildBodyTextIndex(force);
        waitUntilIdle(context_.tasks);
    }

    ModelContext context_{platform_};
    LibraryLoader loader_{context_};
    std::atomic<int> calls_ = 0;
    std::function<std::string(std::string)> textOf_ = [](const std::string& name) { return "正文 " + name; };
    BodyTexts texts_{context_, loader_, nullptr,
                     [this](const std::vector<FileURL>& files, const std::stop_token&) {
                         ++calls_;
                         BodyTextByPath texts;
                         for (const FileURL& file : files)
                             texts.emplace(file.path(), textOf_(std::string(file.lastPathComponent())));
                         return texts;
                     }};
};

TEST_F(BodyTextsTest, Search_GoesOverAllArchivesAlsoThoseThatAreAway) {
    EXPECT_TRUE(found("正文").empty());
    load({{"one", {"a", "b"}}, {"two", {"b", "c"}}});
    std::vector<std::string> lines;
    int reloads = 0;
    QObject::connect(&texts_, &BodyTexts::bodyIndexProgressChanged, [&] {
        if (texts_.bodyIndexProgress()) lines.push_back(texts_.bodyIndexProgress()->statusText);
    });
    QObject::connect(&texts_, &BodyTexts::libraryReloadWanted, [&] { ++reloads; });
    std::int64_t handled = 0;
    QObject::connect(&texts_, &BodyTexts::bodyIndexFinished, [&](qint64 count) { handled = count; });
    rebuild();
    EXPECT_EQ(handled, 4);
    EXPECT_EQ(reloads, 1);
    EXPECT_EQ(texts_.bodyIndexProgress(), std::nullopt);
    EXPECT_EQ(lines.front(), "正在准备正文预览...");
    EXPECT_EQ(lines.back(), "正在准备正文预览… 2/2");
    EXPECT_THAT(found("正文"), UnorderedElementsAre(SharedText("a"), SharedText("b"), SharedText("c")));
    EXPECT_THAT(found("正文 c"), UnorderedElementsAre(SharedText("c")));
    fs::rename(home_.at("two"), home_.at("away"));
    reload();
    EXPECT_THAT(found("正文 c"), UnorderedElementsAre(SharedText("c")));
    EXPECT_EQ(indexed(entry("c")), "正文 c.eml");
}

TEST_F(BodyTextsTest, Prepare_ReadsAMessageOnceForAllWhoAsk) {
    load({{"one", {"a", "b"}}});
    EXPECT_EQ(indexed(entry("a")), std::nullopt);
    std::vector<std::string> answers;
    for (int i = 0; i < 3; ++i) {
        texts_.prepareIndexedBody(entry("a"),
                                  [&](const auto& text) { answers.push_back(text.value_or("none")); });
    }
    waitUntilIdle(context_.tasks);
    EXPECT_THAT(answers, ::testing::ElementsAre("正文 a.eml", "正文 a.eml", "正文 a.eml"));
    EXPECT_EQ(calls_, 1);
    EXPECT_EQ(indexed(entry("a")), "正文 a.eml");
    EXPECT_THAT(found("正文"), UnorderedElementsAre(SharedText("a"))) << "it is in the index now";
    rebuild();
    EXPECT_EQ(calls_, 2) << "the rebuild leaves it out";
}

TEST_F(BodyTextsTest, Prepare_PutsNoEmptyTextIntoTheIndexAndAsksAgain) {
    load({{"one", {"a", "gone"}}});
    for (const char* empty : {"", " \n", "暂无正文预览\n"}) {
        textOf_ = [empty](const auto&) { return empty; };
        EXPECT_EQ(prepared(entry("a")), std::nullopt);
    }
    EXPECT_EQ(calls_, 3);
    EXPECT_TRUE(found("主题 a").empty());
    textOf_ = [](const auto&) -> std::string { throw std::runtime_error("no worker"); };
    EXPECT_EQ(prepared(entry("a")), std::nullopt);
    textOf_ = [](const auto&) { return "\n the text \n"; };
    EXPECT_EQ(prepared(entry("a")), "the text");
    fs::remove(home_.at("one/2019/a/gone.eml"));
    const int before = calls_;
    EXPECT_EQ(prepared(entry("gone")), std::nullopt);
    EXPECT_EQ(calls_, before) << "a file that isn't there is no work";
    ArchivedEntry stranger = entry("a");
    stranger.record.id = "stranger";
    stranger.locationRootPath = home_.at("unknown");
    EXPECT_EQ(prepared(stranger), std::nullopt);
}

TEST_F(BodyTextsTest, Cc_ComesFromTheRecordOrTheStartOfALocalFile) {
    load({{"one", {"recorded", "filed", "none", "late", "linked"}}});
    ArchivedEntry recorded = entry("recorded");
    recorded.record.ccRecipients = "someone@example.com";
    fs::remove(home_.at("one/2019/a/recorded.eml"));
    EXPECT_EQ(cc(recorded), "someone@example.com");
    home_.write("one/2019/a/filed.eml",
                "To: a@b\r\nCC: =?utf-8?B?5p2O?= <li@example.cn>,\r\n b@c\r\n\r\nCc: no\r\n");
    EXPECT_EQ(cc(entry("filed")), "李 <li@example.cn>, b@c");
    fs::remove(home_.at("one/2019/a/filed.eml"));
    EXPECT_EQ(cc(entry("filed")), "李 <li@example.cn>, b@c") << "known from before";
    EXPECT_EQ(cc(entry("none")), std::nullopt);
    home_.write("one/2019/a/none.eml", "Cc: late@example.com\r\n\r\n");
    EXPECT_EQ(cc(entry("none")), std::nullopt) << "the absence is known, too";
    home_.write("one/2019/a/late.eml", "X: " + std::string(70000, 'x') + "\r\nCc: a@b\r\n\r\n");
    EXPECT_EQ(cc(entry("late")), std::nullopt) << "beyond what is read";
    home_.write("secret.eml", "Cc: secret@example.com\r\n\r\n");
    fs::remove(home_.at("one/2019/a/linked.eml"));
    fs::create_symlink(home_.at("secret.eml"), home_.at("one/2019/a/linked.eml"));
    EXPECT_EQ(cc(entry("linked")), std::nullopt);
}

TEST_F(BodyTextsTest, Repair_RunsOncePerSignatureAndOneAtATime) {
    load({{"one", {"a"}}});
    const std::vector<std::string> roots = {home_.at("one")};
    int ended = 0;
    QObject::connect(&texts_, &BodyTexts::bodyIndexFinished, [&] { ++ended; });
    texts_.scheduleBodyTextIndexRepair({}, 1, "no roots");
    texts_.scheduleBodyTextIndexRepair(roots, 0, "nothing new");
    EXPECT_EQ(texts_.bodyIndexProgress(), std::nullopt);
    texts_.scheduleBodyTextIndexRepair(roots, 1, "first");
    for (const char* run : {"second, while the first runs", "third"})
        texts_.scheduleBodyTextIndexRepair(roots, 1, run);
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ended, 2) << "one behind the other, for all runs that came meanwhile";
    texts_.scheduleBodyTextIndexRepair(roots, 1, "third");
    EXPECT_EQ(texts_.bodyIndexProgress(), std::nullopt);
    texts_.scheduleBodyTextIndexRepair(roots, 1, "fourth");
    texts_.rebuildBodyTextIndex(true);
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ended, 4) << "the user's command waits for the repair";
    texts_.setAutomaticRepair(false);
    texts_.scheduleBodyTextIndexRepair(roots, 1, "fifth");
    EXPECT_EQ(texts_.bodyIndexProgress(), std::nullopt);
}

TEST_F(BodyTextsTest, Cancel_EndsTheIndexingAndDropsWhatWaits) {
    load({{"one", {"a"}}, {"two", {"b"}}});
    std::promise<void> reached;
    std::promise<void> goOn;
    textOf_ = [&](const std::string& name) {
        if (name == "a.eml") {
            reached.set_value();
            goOn.get_future().wait();
        }
        return "text of " + name;
    };
    int ended = 0;
    QObject::connect(&texts_, &BodyTexts::bodyIndexFinished, [&] { ++ended; });
    texts_.rebuildBodyTextIndex(false);
    texts_.rebuildBodyTextIndex(true);
    reached.get_future().wait();
    texts_.cancelBodyTextIndex();
    goOn.set_value();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(calls_, 1) << "the second archive isn't begun";
    EXPECT_TRUE(found("text of").empty()) << "a batch that a stop met isn't kept";
}

// The library decides which databases are still of use.
TEST_F(BodyTextsTest, Load_RemovesTheDatabasesOfForgottenArchivesOnly) {
    load({{"one", {"a"}}, {"two", {"b"}}});
    rebuild();
    setKnownLocations(context_.settings, {home_.at("one")});
    home_.write("one/archive-index.json", "{");
    reload();
    std::vector<std::string> databases;
    for (const auto& file : fs::directory_iterator(context_.support.baseDirectory(false))) {
        if (file.path().extension() == ".sqlite") databases.push_back(file.path().filename());
    }
    EXPECT_EQ(databases.size(), 1U) << "of a root that is known, though it can't be read now";
    EXPECT_TRUE(loader_.locationSearchIndexes()->empty());
    load({{"one", {"a"}}});
    EXPECT_EQ(indexed(entry("a")), "正文 a.eml");
}

} // namespace
} // namespace corvane::testing
