#include "locations/loading/library_load.h"

#include <chrono>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "locations/archive_samples.h"
#include "platform/threads/time_limited_worker.h"
#include "search/mail_search_index.h"
#include "support/faulty_file_layer.h"
#include "support/scripted_platform.h"
#include "support/temporary_home.h"

namespace corvane::testing {
namespace {

using namespace std::chrono_literals;

class LoadOfTheLibrary : public ::testing::Test {
  protected:
    ~LoadOfTheLibrary() override {
        released_.set_value();
        platform::waitForAbandonedJobs();
    }

    // Every operation on this path and below waits until the test is over.
    void hang(const std::string& path) {
        files_.observe([path, end = released_.get_future().share()](const RecordedOperation& operation) {
            if (operation.path.starts_with(path)) end.wait();
        });
    }

    std::optional<LibraryLoadResult> load(std::initializer_list<std::string> roots,
                                          std::chrono::nanoseconds limit = 10s,
                                          const LibraryLoadResult* earlier = nullptr) {
        LibraryLoadInput input;
        if (earlier != nullptr) {
            input.publishedLibrary = earlier->library;
            input.publishedIndexes = earlier->indexes;
        }
        for (const std::string& root : roots) input.candidates.add(root);
        input.placeLimit = limit;
        return LibraryLoad(platform_, support_, log_, std::move(input)).run(stop_.get_token());
    }

    TemporaryHome home_;
    ScriptedPlatform platform_{home_};
    FaultyFileLayer files_;
    CorvaneAppSupport support_{platform_, files_};
    MailPerformanceLog performanceLog_{support_};
    ArchiveLibraryStartupLog log_{support_, performanceLog_};
    std::stop_source stop_;

  private:
    std::promise<void> released_;
};

TEST_F(LoadOfTheLibrary, APlaceThatHangsCostsOneLimitAndShowsItsCopy) {
    const std::string dead = writeArchive(home_, "dead/a", sampleIndex(1, {"mid:a"}));
    const std::string fine = writeArchive(home_, "fine", sampleIndex(2, {"mid:b"}));
    ASSERT_TRUE(load({dead, fine}).has_value());
    hang(home_.at("dead"));
    const auto start = std::chrono::steady_clock::now();
    const auto found = load({dead, fine}, 300ms);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    ASSERT_TRUE(found);
    EXPECT_EQ(*found->library->baseIDs, (SharedTextSet{"mid:a", "mid:b"}));
    EXPECT_FALSE(found->locations[0].isConnected);
    EXPECT_TRUE(found->locations[1].isConnected);
    const auto again = std::chrono::steady_clock::now();
    EXPECT_EQ(load({dead, fine}, 60s)->locations, found->locations) << "what hangs isn't waited for again";
    EXPECT_LT(std::chrono::steady_clock::now() - again, 10s);
    EXPECT_EQ(found->files->presence(dead, "2019/a/mid:a.eml"), ArchivedFilePresence::unknown);
    EXPECT_EQ(found->files->presence(fine, "2019/a/mid:b.eml"), ArchivedFilePresence::there);
}

TEST_F(LoadOfTheLibrary, RecordsShareTheirTexts_AndAnIndexOfTheKnownStateIsNotReadAgain) {
    const std::string root = writeArchive(home_, "a", sampleIndex(1, {"mid:a", "mid:b", "mid:c"}));
    const std::string other = writeArchive(home_, "b", sampleIndex(2, {"mid:d"}));
    for (const std::string& each : {root, other}) {
        const std::filesystem::path file = each + "/archive-index.json";
        std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) - 1h);
    }
    const auto first = load({root, other});
    const std::size_t reads = files_.operationCount(FileOperation::read);
    const auto again = load({root, other}, 10s, &*first);
    EXPECT_NE(again->library, first->library) << "what follows from a load follows again";
    EXPECT_EQ(*again->library->entries, *first->library->entries);
    EXPECT_EQ(files_.operationCount(FileOperation::read), reads);

    writeArchive(home_, "a", sampleIndex(1, {"mid:a", "mid:c", "mid:new"}));
    const auto changed = load({root, other}, 10s, &*again);
    EXPECT_EQ(*changed->library->baseIDs, (SharedTextSet{"mid:a", "mid:c", "mid:new", "mid:d"}));
    const auto shares = [&](std::size_t now, std::size_t before) {
        return (*changed->library->entries)[now].record.emlRelativePath.sharesWith(
            (*first->library->entries)[before].record.emlRelativePath);
    };
    EXPECT_TRUE(shares(0, 0));
    EXPECT_TRUE(shares(1, 2));
    EXPECT_TRUE(shares(3, 3));

    // Of one size, and too young for its time to tell.
    writeArchive(home_, "a", sampleIndex(1, {"mid:a", "mid:c", "mid:wen"}));
    const auto rewritten = load({root, other}, 10s, &*changed);
    EXPECT_TRUE(rewritten->library->baseIDs->contains("mid:wen"));
}

TEST_F(LoadOfTheLibrary, AStopDoesNotWaitForAPlaceThatHangs) {
    const std::string dead = writeArchive(home_, "dead", sampleIndex(1, {"mid:a"}));
    hang(dead);
    std::jthread stopping([this] { stop_.request_stop(); });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(load({dead}, 60s).has_value());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST_F(LoadOfTheLibrary, TellsGoneFilesFromAPlaceThatIsNotThere) {
    const std::string path = "2019/a/mid:a.eml";
    const std::string root = writeArchive(home_, "Archives/mail", sampleIndex(1, {"mid:a"}));
    const auto presence = [&] {
        const auto found = load({root});
        return found ? found->files->presence(root, path) : ArchivedFilePresence::there;
    };
    EXPECT_EQ(presence(), ArchivedFilePresence::there);
    std::filesystem::remove(root + "/" + path);
    EXPECT_EQ(presence(), ArchivedFilePresence::gone);
    EXPECT_FALSE(load({root})->locations[0].isConnected) << "an archive without files shows so";

    std::filesystem::remove_all(root);
    EXPECT_EQ(presence(), ArchivedFilePresence::gone) << "its folder stands on the same disk";
    std::filesystem::rename(home_.at("Archives"), home_.at("Away"));
    EXPECT_EQ(presence(), ArchivedFilePresence::gone) << "so does the folder above that one";
    std::filesystem::rename(home_.at("Away"), home_.at("Archives"));
    for (const auto& file : std::filesystem::directory_iterator(support_.filePath("index-cache"))) {
        if (file.path().extension() == ".device") home_.write("other.device", "1");
        if (file.path().extension() == ".device")
            std::filesystem::rename(home_.at("other.device"), file.path());
    }
    EXPECT_EQ(presence(), ArchivedFilePresence::unknown) << "another disk stands there";
}

} // namespace
} // namespace corvane::testing
