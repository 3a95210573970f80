#include <atomic>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "archive/attachments/attachment_cache.h"
#include "archive/opening/archived_cloud_file_opener.h"
#include "archive/portable_names.h"
#include "support/scripted_platform.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;
using OpenError = ArchivedCloudFileOpener::OpenError;

class Opening : public ::testing::Test {
  protected:
    // "here" with the path, "missing", "unavailable" or "cancelled".
    std::string outcome(const std::string& relativePath, const std::stop_token& stop = {}) {
        ArchivedEntry entry{.record = {}, .locationRootPath = SharedText(root_)};
        entry.record.emlRelativePath = SharedText(relativePath);
        ArchivedCloudFileOpener opener(platform_, {std::chrono::milliseconds(1), 50});
        try {
            return opener.ensureLocal(entry, stop) == root_ + "/" + relativePath ? "here" : "elsewhere";
        } catch (const OpenError& error) {
            return error.kind() == OpenError::Kind::missing ? "missing" : "unavailable";
        } catch (const OpeningCancelled&) {
            return "cancelled";
        }
    }

    const TemporaryHome home_;
    ScriptedPlatform platform_{home_};
    const std::string root_ = home_.makeFolder("Archive");
    const std::string placeholder_ = home_.write("Archive/2014/.a.eml.icloud", "");
};

TEST_F(Opening, OnlyAMailOfTheArchiveIsEverOpened) {
    home_.write("Archive/2014/here.eml", "x");
    home_.write("Archive/2014/run.sh", "x");
    home_.write("outside/b.eml", "x");
    home_.makeFolder("Archive/2014/folder.eml");
    fs::create_symlink(home_.at("outside"), home_.at("Archive/out"));
    fs::create_symlink(home_.at("outside/b.eml"), home_.at("Archive/2014/link.eml"));
    EXPECT_EQ(outcome("2014/here.eml"), "here");
    for (const char* const path :
         {"2014/gone.eml", "2015/gone.eml", "2014/run.sh", "2014/folder.eml", "2014/link.eml", "out/b.eml",
          "../outside/b.eml", "/etc/passwd.eml", "", "archive-index.json"})
        EXPECT_EQ(outcome(path), "missing") << path;
    fs::rename(root_, home_.at("Pulled"));
    EXPECT_EQ(outcome("2014/here.eml"), "unavailable") << "a disk that is away has lost nothing";
}

TEST_F(Opening, AFileOfACloudIsWaitedFor) {
    struct Case {
        const char* what;
        std::function<void(const std::string& path)> download;
        const char* expected;
    };

    const std::vector<Case> cases = {
        {"never", [](const std::string&) {}, "unavailable"},
        {"the file",
         [this](const std::string& path) {
             fs::remove(placeholder_);
             home_.write("Archive/2014/a.eml", "x");
             EXPECT_EQ(path, home_.at("Archive/2014/a.eml"));
         },
         "here"},
        {"a folder",
         [this](const std::string&) {
             fs::remove(placeholder_);
             home_.makeFolder("Archive/2014/a.eml");
         },
         "missing"},
        {"nothing, and the placeholder goes", [this](const std::string&) { fs::remove(placeholder_); },
         "missing"},
        {"the disk goes", [this](const std::string&) { fs::rename(root_, home_.at("Pulled")); },
         "unavailable"},
    };
    for (const Case& arrival : cases) {
        home_.write("Archive/2014/.a.eml.icloud", "");
        fs::remove_all(home_.at("Archive/2014/a.eml"));
        platform_.onRequestDownload(arrival.download);
        EXPECT_EQ(outcome("2014/a.eml"), arrival.expected) << arrival.what;
    }
}

TEST_F(Opening, AFileWithoutItsContentIsAskedForOnceAndComesLate) {
    home_.write("Archive/2014/b.eml", "x");
    std::atomic<int> looks = 0;
    std::atomic<int> requests = 0;
    platform_.onCloudPlaceholder([&](const std::string&) { return ++looks < 5; });
    platform_.onRequestDownload([&](const std::string&) { ++requests; });
    EXPECT_EQ(outcome("2014/b.eml"), "here");
    EXPECT_EQ(looks, 5);
    EXPECT_EQ(requests, 1);
}

TEST_F(Opening, AWaitThatIsCancelledEnds) {
    std::stop_source stop;
    platform_.onRequestDownload([&](const std::string&) { stop.request_stop(); });
    EXPECT_EQ(outcome("2014/a.eml", stop.get_token()), "cancelled");
}

TEST(PortableNames, StayOneNameThatEverySystemTakes) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"../../.ssh/authorized_keys", "ssh-authorized_keys"},
        {"C:\\Windows\\a.dll", "C--Windows-a.dll"},
        {"gpj\u202Efdp.exe\u0007", "gpjfdp.exe"},
        {"NUL", "NUL_"},
        {"com1.tar.gz", "com1_.tar.gz"},
        {"aux .txt", "aux _.txt"},
        {"console.txt", "console.txt"},
        {"Desktop.ini", "Desktop_.ini"},
        {"报告.pdf. ", "报告.pdf"},
    };
    for (const auto& [given, expected] : cases) EXPECT_EQ(archive::portableFileName(given), expected);
    std::string longName;
    for (int i = 0; i < 200; ++i) longName += "报";
    const std::string cut = archive::portableFileName(longName + ".pdf");
    EXPECT_LE(cut.size(), 255U);
    EXPECT_TRUE(cut.ends_with("报.pdf"));
    archive::UniqueNames names;
    EXPECT_EQ(names.next("a", "x.pdf"), "x.pdf");
    EXPECT_EQ(names.next("a", "x-2.pdf"), "x-2.pdf");
    EXPECT_EQ(names.next("a", "X.PDF"), "X-3.PDF") << "a disk without case has one of them";
    EXPECT_EQ(names.next("b", "x.pdf"), "x.pdf");
    EXPECT_LE(names.next("b", cut).size() + names.next("b", cut).size(), 510U);
}

TEST(AttachmentCache, IsPrivateBoundedAndGoesWithItsRun) {
    const TemporaryHome home;
    const std::string temporary = home.makeFolder("tmp");
    {
        archive::AttachmentCache cache(temporary, {.bytes = 10, .files = 2});
        const std::string first = cache.put({"/a.eml", "x/y"}, "12345");
        EXPECT_EQ(fs::status(first).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_EQ(fs::status(fs::path(first).parent_path()).permissions(), fs::perms::owner_all);
        EXPECT_TRUE(first.starts_with(temporary + "/CorvaneAttachments/"));
        const std::string second = cache.put({"/a.eml", "x:y"}, "1234");
        EXPECT_NE(first, second) << "two names that are one on the disk";
        EXPECT_EQ(cache.find({"/a.eml", "x/y"}), first);
        cache.put({"/b.eml", "z"}, "123");
        EXPECT_EQ(cache.find({"/a.eml", "x:y"}), std::nullopt) << "the one that was used longest ago";
        EXPECT_FALSE(fs::exists(second));
        home.write(first.substr(home.path().size() + 1), "");
        EXPECT_EQ(cache.find({"/a.eml", "x/y"}), std::nullopt) << "an empty file is none";
        archive::AttachmentCache::removeLeftovers(temporary);
        EXPECT_TRUE(fs::exists(first)) << "of a run that lives";
    }
    home.write("tmp/CorvaneAttachments/mine.txt", "");
    archive::AttachmentCache::removeLeftovers(temporary);
    std::vector<std::string> left;
    for (const auto& entry : fs::directory_iterator(temporary + "/CorvaneAttachments"))
        left.push_back(entry.path().filename());
    EXPECT_EQ(left, std::vector<std::string>{"mine.txt"});
}

} // namespace
} // namespace corvane::testing
