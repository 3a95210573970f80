#include "model/library/library_loader.h"

#include <filesystem>
#include <fstream>
#include <future>
#include <set>

#include "locations/archive_samples.h"
#include "model/model_test.h"
#include "platform/files/directory.h"
#include "records/stores/settings_keys.h"

namespace corvane::testing {
namespace {

using namespace std::chrono_literals;

// One run of the program over the test's home.
struct LibraryRun {
    explicit LibraryRun(const platform::Platform& platform)
      : context(platform) {
        QObject::connect(&loader, &LibraryLoader::loadFinished, [this] { ++finishedLoads; });
        QObject::connect(&loader, &LibraryLoader::archivedBaseIDsChanged, [this] { ++baseIDChanges; });
    }

    void load(const std::optional<std::string>& destination = std::nullopt, bool force = true) {
        loader.loadEmailArchiveIndex(destination, force);
        waitUntilIdle(context.tasks);
    }

    // For loads beside something that hangs.
    void loadUntilFinished(const std::string& destination) {
        QEventLoop loop;
        QObject::connect(&loader, &LibraryLoader::loadFinished, &loop, &QEventLoop::quit);
        QTimer::singleShot(60s, &loop, &QEventLoop::quit);
        loader.loadEmailArchiveIndex(destination, false);
        loop.exec();
    }

    [[nodiscard]] std::vector<std::string> ids() const {
        std::vector<std::string> ids;
        for (const ArchivedEntry& entry : *loader.archivedEntries()) ids.push_back(entry.record.id.str());
        return ids;
    }

    [[nodiscard]] bool isConnected(const std::string& root) const {
        const ArchiveLocation* location = loader.location(root);
        EXPECT_NE(location, nullptr) << root;
        return location != nullptr && location->isConnected;
    }

    ModelContext context;
    std::chrono::steady_clock::time_point now{1h};
    LibraryLoader loader{context, nullptr, [this] { return now; }};
    int finishedLoads = 0;
    int baseIDChanges = 0;
};

// Holds up the next question for the mounted volumes.
class Hang {
  public:
    explicit Hang(ScriptedPlatform& platform) {
        platform.onMountedVolumes([this, next = platform.mountedVolumesCalls() + 1](int call) {
            if (call != next) return;
            reached_.set_value();
            released_.get_future().wait();
        });
    }

    void waitUntilReached() { EXPECT_EQ(reached_.get_future().wait_for(60s), std::future_status::ready); }

    void release() { released_.set_value(); }

  private:
    std::promise<void> reached_;
    std::promise<void> released_;
};

using Ids = std::vector<std::string>;

class Library : public ModelTest {
  protected:
    void remember(LibraryRun& run, const std::vector<std::string>& roots) {
        run.context.settings.setTextList(knownLocationsKey, roots);
    }
};

TEST_F(Library, ShowsDestinationKnownAndFoundArchivesInThisOrder) {
    const std::string known = writeArchive(home_, "known", sampleIndex(1, {"mid:k", "mid:both"}));
    const std::string destination =
        writeArchive(home_, "destination", sampleIndex(2, {"mid:d#v1", "mid:d#v2"}));
    const std::string found =
        writeArchive(home_, "Library/CloudStorage/Box-Box/Mail", sampleIndex(3, {"mid:both"}));
    writeIndex(home_, "Library/CloudStorage/Box-Box/Empty", sampleIndex(4, {}));
    LibraryRun run(platform_);
    remember(run, {known + "/", home_.at("gone")});
    run.load(destination);

    EXPECT_EQ(run.ids(), (Ids{"mid:d#v1", "mid:d#v2", "mid:k", "mid:both", "mid:both"}));
    EXPECT_EQ(*run.loader.archivedEmailBaseIDs(), (SharedTextSet{"mid:d", "mid:k", "mid:both"}));
    EXPECT_EQ(run.loader.archivedEntryByBaseID("mid:both")->locationRootPath, found);
    EXPECT_EQ(run.loader.emailArchiveIndex(), sampleIndex(2, {"mid:d#v1", "mid:d#v2"}));
    ASSERT_EQ(run.loader.archiveLocations().size(), 3U);
    const ArchiveLocation& location = run.loader.archiveLocations()[2];
    EXPECT_EQ(location, (ArchiveLocation{found, "Box · Mail", ArchiveLocation::Kind::cloud, true, 1}));
    EXPECT_EQ(
        knownLocations(run.context.settings),
        (Ids{destination, known, home_.at("gone"), home_.at("Library/CloudStorage/Box-Box/Empty"), found}));
}

TEST_F(Library, AnUnpluggedDiskStaysAndItsDeletedFolderGoes) {
    const std::string root = writeArchive(home_, "Volumes/STICK/Mail", sampleIndex(1, {"mid:a"}));
    platform_.plugIn("STICK");
    LibraryRun run(platform_);
    run.load(root);
    EXPECT_TRUE(run.isConnected(root));
    EXPECT_NE(run.loader.archivedFiles()->stamp(root, "2019/a/mid:a.eml"), nullptr);

    std::filesystem::rename(home_.at("Volumes"), home_.at("Pulled"));
    platform_.unplug();
    run.loader.refreshArchiveLocationConnectionStates();
    waitUntilIdle(run.context.tasks);
    EXPECT_TRUE(run.loader.archivedFiles()->byRoot.empty());
    run.load(root);
    EXPECT_EQ(run.ids(), Ids{"mid:a"});
    EXPECT_FALSE(run.isConnected(root));
    EXPECT_EQ(run.loader.location(root)->kind, ArchiveLocation::Kind::removable);

    platform_.plugIn("STICK");
    run.load(root);
    EXPECT_EQ(run.ids(), Ids());
    platform_.unplug();
    run.load(root);
    EXPECT_EQ(run.ids(), Ids()) << "the copy of a deleted archive is deleted with it";
}

TEST_F(Library, ABrokenIndexHidesItsArchiveAndForgetsNothing) {
    const std::string root = writeArchive(home_, "archive", sampleIndex(1, {"mid:a"}));
    const std::string whole = readWhole(root + "/archive-index.json");
    LibraryRun run(platform_);
    run.load(root);
    const std::vector<std::string> broken = {"",
                                             "null",
                                             whole.substr(0, whole.size() / 2),
                                             std::string(100'000, '['),
                                             whole + "}",
                                             std::string("\xff\xfe\x00\x00", 4)};
    for (const std::string& content : broken) {
        home_.write("archive/archive-index.json", content);
        run.load(root);
        EXPECT_EQ(run.ids(), Ids()) << content.substr(0, 20);
        EXPECT_EQ(run.loader.emailArchiveIndex(), std::nullopt);
    }
    EXPECT_EQ(knownLocations(run.context.settings), Ids{root});
    std::filesystem::remove_all(root);
    run.load();
    EXPECT_EQ(run.ids(), Ids{"mid:a"}) << "the copy of the last good index is still there";
}

TEST_F(Library, AForgottenLocationIsTakenBackOnlyWithItsFiles) {
    const auto index = sampleIndex(1, {"mid:a"});
    const std::string root = writeArchive(home_, "archive", index);
    LibraryRun run(platform_);
    run.load(root);
    const auto forget = [&] {
        run.context.settings.setTextList(forgottenLocationsKey, {root + "/", "/other"});
    };

    forget();
    std::filesystem::rename(root, home_.at("away"));
    run.load();
    EXPECT_EQ(run.ids(), Ids());
    EXPECT_EQ(knownLocations(run.context.settings), Ids());
    EXPECT_EQ(forgottenLocations(run.context.settings), (std::set<std::string>{root, "/other"}));
    EXPECT_TRUE(std::filesystem::is_empty(run.context.support.filePath("index-cache")));

    writeIndex(home_, "archive", index); // without files
    run.load(root);
    EXPECT_EQ(run.ids(), Ids());

    std::filesystem::remove_all(root);
    std::filesystem::rename(home_.at("away"), root);
    run.load(root);
    EXPECT_EQ(run.ids(), Ids{"mid:a"});
    EXPECT_TRUE(run.isConnected(root));
    EXPECT_EQ(forgottenLocations(run.context.settings), std::set<std::string>{"/other"});
}

TEST_F(Library, ALoadIsNotRepeatedWhileItRunsOrShortlyAfter) {
    const std::string root = writeArchive(home_, "archive", sampleIndex(1, {"mid:a"}));
    LibraryRun run(platform_);
    remember(run, {root});
    const auto loadsAfter = [&](std::chrono::milliseconds pause, const auto& destination, bool force) {
        run.now += pause;
        const int before = run.finishedLoads;
        run.load(destination, force);
        return run.finishedLoads - before;
    };
    const std::optional<std::string> none;
    run.loader.loadEmailArchiveIndex(none, false);
    run.loader.loadEmailArchiveIndex(none, false);
    waitUntilIdle(run.context.tasks);
    EXPECT_EQ(run.finishedLoads, 1);
    EXPECT_EQ(platform_.mountedVolumesCalls(), 1);

    EXPECT_EQ(loadsAfter(1999ms, none, false), 0);
    EXPECT_EQ(loadsAfter(1ms, none, false), 1);
    EXPECT_EQ(loadsAfter(0ms, none, true), 1);
    EXPECT_EQ(loadsAfter(0ms, std::optional(home_.at("new")), false), 1);
}

TEST_F(Library, ALoadThatHangsIsOvertakenAndNeverPublished) {
    const std::string slow = writeArchive(home_, "slow", sampleIndex(1, {"mid:slow"}));
    const std::string fast = writeArchive(home_, "fast", sampleIndex(2, {"mid:fast"}));
    LibraryRun run(platform_);
    Hang hang(platform_);
    run.loader.loadEmailArchiveIndex(slow, false);
    hang.waitUntilReached();
    run.loadUntilFinished(fast);
    EXPECT_EQ(run.ids(), Ids{"mid:fast"});
    hang.release();
    waitUntilIdle(run.context.tasks);
    EXPECT_EQ(run.ids(), Ids{"mid:fast"});
    EXPECT_EQ(run.finishedLoads, 1);
    EXPECT_EQ(knownLocations(run.context.settings), Ids{fast});
}

TEST_F(Library, WhatIsRememberedWhileALoadRunsStaysKnown) {
    const std::string root = writeArchive(home_, "archive", sampleIndex(1, {"mid:a"}));
    LibraryRun run(platform_);
    run.loader.loadEmailArchiveIndex(root, true);
    rememberLocation(run.context.settings, "/new");
    waitUntilIdle(run.context.tasks);
    EXPECT_EQ(knownLocations(run.context.settings), (Ids{root, "/new"}));
}

TEST_F(Library, TheSnapshotOfOneRunIsTheFirstLibraryOfTheNext) {
    const std::string root = writeArchive(home_, "archive", sampleIndex(1, {"mid:a#v1", "mid:a#v2"}));
    {
        LibraryRun run(platform_);
        run.loader.loadCachedArchiveLibraryIfNeeded();
        EXPECT_EQ(run.baseIDChanges, 0);
        run.load(root);
    }
    LibraryRun run(platform_);
    run.loader.loadCachedArchiveLibraryIfNeeded();
    EXPECT_EQ(run.ids(), (Ids{"mid:a#v1", "mid:a#v2"}));
    EXPECT_EQ(*run.loader.archivedEmailBaseIDs(), SharedTextSet{"mid:a"});
    EXPECT_TRUE(run.isConnected(root));
    EXPECT_EQ(run.baseIDChanges, 1);
    run.loader.loadCachedArchiveLibraryIfNeeded();
    run.load(root);
    EXPECT_EQ(run.baseIDChanges, 1) << "the same base ids are no change";

    std::filesystem::remove_all(root);
    std::filesystem::remove_all(run.context.support.filePath("index-cache"));
    run.load();
    EXPECT_EQ(run.ids(), Ids());
    EXPECT_EQ(run.baseIDChanges, 2);
}

TEST_F(Library, ASnapshotIsNeverShownAfterALiveLoad) {
    const std::string root = writeArchive(home_, "archive", sampleIndex(1, {"mid:a"}));
    LibraryRun run(platform_);
    run.load(root);
    const std::string snapshot = run.context.support.filePath("archive-library-snapshot.json");
    const std::string old = readWhole(snapshot);
    home_.write("archive/archive-index.json", "broken");
    run.load(root);
    std::ofstream(snapshot) << old;
    run.loader.loadCachedArchiveLibraryIfNeeded();
    EXPECT_EQ(run.ids(), Ids());
}

TEST_F(Library, ADamagedSnapshotCountsAsNone) {
    const std::string root = writeArchive(home_, "archive", sampleIndex(1, {"mid:a"}));
    std::string snapshot;
    {
        LibraryRun run(platform_);
        run.load(root);
        snapshot = run.context.support.filePath("archive-library-snapshot.json");
    }
    const std::string whole = readWhole(snapshot);
    for (const std::string& content : {std::string(), whole.substr(0, whole.size() - 1), std::string("[]")}) {
        std::ofstream(snapshot) << content;
        LibraryRun run(platform_);
        run.loader.loadCachedArchiveLibraryIfNeeded();
        EXPECT_EQ(run.ids(), Ids());
        waitUntilIdle(run.context.tasks);
    }
}

TEST_F(Library, ConnectionsAreTestedAgainAndKept) {
    const std::string root = writeArchive(home_, "Volumes/STICK/Mail", sampleIndex(1, {"mid:a"}));
    platform_.plugIn("STICK");
    LibraryRun run(platform_);
    run.load(root);
    const auto test = [&] {
        run.loader.refreshArchiveLocationConnectionStates();
        waitUntilIdle(run.context.tasks);
    };
    int changes = 0;
    QObject::connect(&run.loader, &LibraryLoader::archiveLocationsChanged, [&] { ++changes; });
    test();
    EXPECT_EQ(changes, 0);
    std::filesystem::rename(home_.at("Volumes"), home_.at("Pulled"));
    platform_.unplug();
    test();
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(run.isConnected(root));

    LibraryRun next(platform_);
    next.loader.loadCachedArchiveLibraryIfNeeded();
    EXPECT_FALSE(next.isConnected(root));
    waitUntilIdle(next.context.tasks);
}

TEST_F(Library, ADiskPulledDuringALoadDoesNotShowAsConnected) {
    const std::string root = writeArchive(home_, "Volumes/STICK/Mail", sampleIndex(1, {"mid:a"}));
    platform_.plugIn("STICK");
    LibraryRun run(platform_);
    run.load(root);
    // A load asks for the volume at its end, when it has found the archive connected.
    std::promise<void> shown;
    platform_.onVolumeOf([&] {
        run.context.tasks.postToMain([&] {
            std::filesystem::rename(home_.at("Volumes"), home_.at("Pulled"));
            platform_.unplug();
            run.loader.refreshArchiveLocationConnectionStates();
        });
        EXPECT_EQ(shown.get_future().wait_for(60s), std::future_status::ready);
    });
    QObject::connect(
        &run.loader, &LibraryLoader::archiveLocationsChanged, &run.loader, [&] { shown.set_value(); },
        Qt::SingleShotConnection);
    run.load(root);
    EXPECT_FALSE(run.isConnected(root));
}

TEST_F(Library, ALateConnectionTestLeavesANewerLibraryAlone) {
    const std::string old = writeArchive(home_, "Volumes/STICK/Mail", sampleIndex(1, {"mid:old"}));
    platform_.plugIn("STICK");
    LibraryRun run(platform_);
    run.load(old);
    const std::string fresh = writeArchive(home_, "fresh", sampleIndex(2, {"mid:fresh"}));
    std::filesystem::remove_all(old);
    Hang hang(platform_);
    run.loader.refreshArchiveLocationConnectionStates();
    hang.waitUntilReached();
    run.loadUntilFinished(fresh);
    platform_.unplug();
    hang.release();
    waitUntilIdle(run.context.tasks);
    EXPECT_EQ(run.loader.archiveLocations().size(), 1U);
    EXPECT_TRUE(run.isConnected(fresh));

    LibraryRun next(platform_);
    next.loader.loadCachedArchiveLibraryIfNeeded();
    EXPECT_EQ(next.ids(), Ids{"mid:fresh"});
    waitUntilIdle(next.context.tasks);
}

} // namespace
} // namespace corvane::testing
