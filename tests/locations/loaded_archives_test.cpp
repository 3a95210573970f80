#include "locations/loading/loaded_archives.h"

#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>

#include "locations/archive_locations.h"
#include "locations/archive_samples.h"
#include "locations/loading/archive_index_cache.h"
#include "locations/loading/archived_files.h"
#include "locations/loading/same_archives.h"
#include "locations/place_names.h"
#include "locations/places/place_looks.h"
#include "platform/files/directory.h"
#include "support/faulty_file_layer.h"
#include "support/scripted_platform.h"
#include "support/temporary_home.h"

namespace corvane::testing {
namespace {

class LoadedArchives : public ::testing::Test {
  protected:
    [[nodiscard]] bool allGone(const EmailArchiveIndex& index, const std::string& root) {
        return allArchivedEmlGone(filesOf(index, root), index);
    }

    [[nodiscard]] RootFiles filesOf(const EmailArchiveIndex& index, const std::string& root) {
        PlaceLooks looks(platform_, files_, {});
        return *looks.ask<RootFiles>(
            root, [=](PlaceLook& look) { return listArchivedFiles(look, pathsOf(index), root); });
    }

    static std::vector<SharedText> pathsOf(const EmailArchiveIndex& index) {
        std::vector<SharedText> paths;
        for (const ArchivedEmailRecord& record : index.records) paths.push_back(record.emlRelativePath);
        return paths;
    }

    TemporaryHome home_;
    ScriptedPlatform platform_{home_};
    FaultyFileLayer files_;
    CorvaneAppSupport support_{platform_, files_};
    ArchiveIndexCache cache_{platform_, support_};
};

TEST_F(LoadedArchives, OneOfTheSameArchivesStays) {
    struct Sample {
        const char* path;
        bool connected;
        int createdAt;
        std::vector<std::string> ids{"mid:a"};
    };

    const struct {
        std::vector<Sample> archives;
        std::vector<std::string> expected;
    } cases[] = {
        {{{"/a", true, 1}, {"/b", true, 1}}, {"/a"}},
        {{{"/a", false, 1}, {"/b", true, 1}}, {"/b"}},
        {{{"/a", false, 1}, {"/b", false, 1}}, {"/a"}},
        {{{"/a", false, 1}, {"/b", true, 1}, {"/c", true, 1}, {"/d", false, 1}}, {"/b"}},
        {{{"/a", false, 1}, {"/x", false, 2}, {"/b", true, 1}, {"/y", true, 3}}, {"/x", "/b", "/y"}},
        {{}, {}},
        {{{"/a", true, 1}, {"/b", true, 1, {"mid:b", "mid:a"}}}, {"/a"}},
        {{{"/a", true, 1}, {"/b", true, 1, {"mid:b"}}, {"/c", true, 1, {"mid:b", "mid:c"}}}, {"/a", "/b"}},
    };

    for (const auto& [archives, expected] : cases) {
        std::vector<LoadedArchive> loaded;
        for (const auto& [path, connected, createdAt, ids] : archives) {
            loaded.push_back({path, connected, sampleIndex(createdAt, ids)});
        }
        std::vector<std::string> kept;
        for (const auto& archive : dedupeLoadedArchives(std::move(loaded))) kept.push_back(archive.rootPath);
        EXPECT_EQ(kept, expected);
    }
}

TEST_F(LoadedArchives, EntriesAreUniqueAndVariantsAreOneMessage) {
    auto repeated = sampleRecord("mid:a");
    repeated.subject = "later";
    const auto library = ArchivedLibrary::make({{sampleRecord("mid:a"), "/x"},
                                                {repeated, "/x"},
                                                {sampleRecord("mid:b#v1"), "/x"},
                                                {sampleRecord("mid:b#v2"), "/x"},
                                                {sampleRecord("mid:a"), "/y"},
                                                {sampleRecord("#v1"), "/y"}});
    EXPECT_EQ(library->entries->size(), 5U);
    EXPECT_EQ(library->entries->front().record.subject, sampleRecord("mid:a").subject);
    EXPECT_EQ(*library->baseIDs, (SharedTextSet{"mid:a", "mid:b", "#v1"}));
    EXPECT_EQ(library->entryByBaseID("mid:a")->locationRootPath, "/y");
    EXPECT_EQ(library->entryByBaseID("mid:b")->record.id, "mid:b#v2");
    EXPECT_EQ(library->entryByBaseID("mid:b#v2"), nullptr);

    std::vector<ArchiveLocation> locations(2);
    locations[0].rootPath = "/x";
    locations[1].rootPath = "/z";
    countEntries(locations, *library);
    EXPECT_EQ(locations[0].count, 3);
    EXPECT_EQ(locations[1].count, 0);

    EXPECT_EQ(ArchivedLibrary::make({{sampleRecord("mid:c"), "/x"}}, library)->baseIDs->size(), 1U);
    EXPECT_EQ(ArchivedLibrary::make(*library->entries, library)->baseIDs, library->baseIDs);
    std::vector<ArchivedEntry> changed = *library->entries;
    changed.back().record.subject = "another";
    const auto other = ArchivedLibrary::make(changed, library);
    EXPECT_EQ(*other->entries, changed);
    EXPECT_EQ(other->baseIDs, library->baseIDs);
}

TEST_F(LoadedArchives, LocationsHaveTheNamesAndKindsOfTheirDisks) {
    const std::string stick = home_.at("Volumes/STICK");
    const auto volume = [](std::optional<bool> removable, std::optional<bool> internal) {
        return platform::Volume{"/v", "v", removable, std::nullopt, internal, true};
    };
    using enum ArchiveLocation::Kind;

    const struct {
        std::string root;
        std::string name;
        bool connected;
        std::optional<platform::Volume> volume;
        ArchiveLocation::Kind kind;
    } cases[] = {
        {stick, "U 盘 · STICK", false, std::nullopt, removable},
        {stick + "/Mail", "U 盘 · STICK", true, volume(true, true), removable},
        {stick + "/Mail", "U 盘 · STICK", true, volume(std::nullopt, true), local},
        {"/h/Nutstore/邮件", "坚果云 · 邮件", true, volume(false, std::nullopt), local},
        {"/h/Library/CloudStorage/Box-Box/M", "Box · M", false, volume(true, false), cloud},
        {"/h/Library/Mobile Documents/M", "iCloud 云盘 · M", true, volume(true, false), cloud},
        {"/h/Mail", "Mail", true, volume(false, false), removable},
        {"/h/Mail", "Mail", true, std::nullopt, local},
        {"/h/Mail", "Mail", false, volume(true, false), local},
    };

    for (const auto& [root, name, connected, ofPaths, kind] : cases) {
        platform_.setVolumeOfPaths(ofPaths);
        EXPECT_EQ(locationDisplayName(platform_, root), name);
        EXPECT_EQ(locationKind(platform_, root, connected), kind) << root;
    }
}

TEST_F(LoadedArchives, ADiskIsConnectedWhenItIsMountedAndAFolderWhenItExists) {
    const std::string onDisk = home_.at("Volumes/STICK/Mail");
    EXPECT_FALSE(isLocationConnected(platform_, onDisk));
    home_.makeFolder("Volumes/STICK"); // of a disk that isn't there
    EXPECT_FALSE(isLocationConnected(platform_, onDisk));
    platform_.plugIn("STICK");
    EXPECT_TRUE(isLocationConnected(platform_, onDisk));
    platform_.plugIn("STICK2");
    EXPECT_FALSE(isLocationConnected(platform_, onDisk));
    platform_.setMountedVolumes(std::nullopt);
    EXPECT_TRUE(isLocationConnected(platform_, onDisk));

    EXPECT_TRUE(isLocationConnected(platform_, home_.path()));
    EXPECT_FALSE(isLocationConnected(platform_, home_.at("nothing")));
    EXPECT_FALSE(volumeMounted(platform_, home_.path()));
}

TEST_F(LoadedArchives, ContentIsGoneOnlyWhenEveryFileIsKnownToBeMissing) {
    const auto index = sampleIndex(1, {"mid:a", "mid:b"});
    const std::string root = home_.makeFolder("archive");
    EXPECT_TRUE(allGone(index, root));
    EXPECT_FALSE(allGone(sampleIndex(1, {}), root));

    home_.write("archive/2019/a/.mid:b.eml.icloud", "");
    EXPECT_FALSE(allGone(index, root));
    std::filesystem::remove_all(home_.at("archive/2019"));
    EXPECT_TRUE(allGone(index, root));

    home_.makeFolder("archive/2019/a");
    EXPECT_TRUE(allGone(index, root));
    for (const std::size_t question : {1U, 2U, 3U}) {
        files_.inject({.at = question, .operation = FileOperation::stat, .error = EIO});
        EXPECT_FALSE(allGone(index, root)) << "could not look at " << question;
    }
}

TEST_F(LoadedArchives, FilesAreThereOrInTheCloudOrGoneOrUnknown) {
    auto index = sampleIndex(1, {"there", "cloud", "folder", "gone", "e\xCC\x81"});
    index.records.push_back(sampleRecord("elsewhere"));
    index.records.back().emlRelativePath = "2020/b/x.eml";
    const std::string root = home_.makeFolder("archive");
    home_.write("archive/2019/a/there.eml", "four");
    home_.write("archive/2019/a/.cloud.eml.icloud", "");
    home_.write("archive/2019/a/.\u00E9.eml.icloud", "");
    home_.makeFolder("archive/2019/a/folder.eml");
    home_.makeFolder("archive/2020/b");
    files_.inject({.at = 1, .operation = FileOperation::list, .error = EIO}); // of the later folder
    files_.inject({.at = 2, .operation = FileOperation::list, .error = EIO});
    EXPECT_EQ(filesOf(index, root).unknown.size(), index.records.size());

    using enum ArchivedFilePresence;
    const auto files = std::make_shared<const RootFiles>(filesOf(index, root));
    ArchivedFiles all{{{root, files}}};
    const std::pair<const char*, ArchivedFilePresence> expected[] = {
        {"2019/a/there.eml", there}, {"2019/a/cloud.eml", inCloud}, {"2019/a/e\xCC\x81.eml", inCloud},
        {"2019/a/folder.eml", gone}, {"2019/a/gone.eml", gone},     {"2020/b/x.eml", gone}};
    for (const auto& [path, presence] : expected) {
        EXPECT_EQ(all.presence(root, path), presence) << path;
        EXPECT_EQ(all.stamp(root, path) != nullptr, presence == there);
    }
    EXPECT_EQ(all.stamp(root, "2019/a/there.eml")->sizeBytes, 4);
    EXPECT_EQ(all.presence("/other", "2019/a/there.eml"), unknown);
    const SharedArchivedFiles published = publishedFiles(all, nullptr);
    EXPECT_EQ(publishedFiles(all, published), published);
    std::filesystem::remove(root + "/2019/a/there.eml");
    all.byRoot[root] = std::make_shared<const RootFiles>(filesOf(index, root));
    EXPECT_NE(publishedFiles(all, published), published);
}

TEST_F(LoadedArchives, UnsafePathsCountAsMissingAndAreNeverLookedAt) {
    home_.write("outside.eml", "x");
    const std::string root = home_.makeFolder("archive");
    EmailArchiveIndex index = sampleIndex(1, {"a", "b", "c", "d", "e"});
    const std::string paths[] = {"../outside.eml", home_.at("outside.eml"), "", "x/../../outside.eml",
                                 std::string("a\0b", 3)};
    for (std::size_t i = 0; i < std::size(paths); ++i) index.records[i].emlRelativePath = paths[i];
    EXPECT_TRUE(allGone(index, root));
    EXPECT_EQ(files_.operationCount(), 0U);

    home_.makeFolder("archive/2019/a");
    index.records.push_back(sampleRecord(std::string(300, 'n')));
    EXPECT_TRUE(allGone(index, root)) << "no file has so long a name";
}

TEST_F(LoadedArchives, MissingContentIsToldOnlyOfARootThatIsThere) {
    std::vector<ArchivedEntry> entries = {{sampleRecord("mid:a"), home_.at("archive")},
                                          {sampleRecord("mid:b"), home_.at("other")}};
    EXPECT_FALSE(archiveLocationContentMissing(files_, entries, home_.at("archive")));
    home_.makeFolder("archive");
    EXPECT_TRUE(archiveLocationContentMissing(files_, entries, home_.at("archive")));
    EXPECT_FALSE(archiveLocationContentMissing(files_, {}, home_.at("archive")));
    home_.write("archive/2019/a/mid:a.eml", "x");
    EXPECT_FALSE(archiveLocationContentMissing(files_, entries, home_.at("archive")));
}

TEST_F(LoadedArchives, AnIndexIsKeptForTheTimeWithoutItsDisk) {
    const auto index = sampleIndex(1, {"mid:a"});
    const std::string root = writeIndex(home_, "Volumes/STICK/Mail", index);
    const std::filesystem::path file = root + "/archive-index.json";
    std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) - std::chrono::hours(1));
    platform_.plugIn("STICK");
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, false), std::nullopt);
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), index);
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, false), index);

    const std::size_t renames = files_.operationCount(FileOperation::rename);
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), index);
    EXPECT_EQ(files_.operationCount(FileOperation::rename), renames)
        << "an unchanged index is not written again";
    writeIndex(home_, "Volumes/STICK/Mail", sampleIndex(1, {"mid:z"}));
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), sampleIndex(1, {"mid:z"}));
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, false), sampleIndex(1, {"mid:z"}));
}

TEST_F(LoadedArchives, AFailedCacheWriteIsIgnored) {
    const auto index = sampleIndex(1, {"mid:a"});
    const std::string root = writeIndex(home_, "archive", index);
    files_.inject({.effect = Effect::failFromHere, .operation = FileOperation::write, .error = ENOSPC});
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), index);
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, false), std::nullopt);
}

TEST_F(LoadedArchives, OnlyAFolderDeletedFromAPresentDiskTakesItsCopyAlong) {
    const auto index = sampleIndex(1, {"mid:a"});
    const auto keepsCopy = [&](const std::string& root) {
        return platform::fileExists(cache_.indexCachePath(root));
    };
    const std::string root = writeIndex(home_, "Volumes/STICK/Mail", index);
    const std::string indexPath = root + "/archive-index.json";
    platform_.plugIn("STICK");
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), index);
    ASSERT_TRUE(keepsCopy(root));

    files_.inject({.operation = FileOperation::stat, .error = EIO});
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), std::nullopt);
    EXPECT_TRUE(keepsCopy(root)) << "could not look";

    home_.write("Volumes/STICK/Mail/archive-index.json", "{\"createdAt\": 1");
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), std::nullopt)
        << "no copy instead of a broken index";
    EXPECT_TRUE(keepsCopy(root));

    std::filesystem::remove_all(root);
    std::filesystem::create_directories(indexPath); // there, and not to be read
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), std::nullopt);
    EXPECT_TRUE(keepsCopy(root));

    std::filesystem::remove_all(root);
    platform_.unplug(); // between the test of the connection and the look
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), std::nullopt);
    EXPECT_TRUE(keepsCopy(root));

    platform_.plugIn("STICK");
    EXPECT_EQ(cache_.loadIndexWithCache(root, root, true), std::nullopt);
    EXPECT_FALSE(keepsCopy(root));

    const std::string elsewhere = writeIndex(home_, "archive", index);
    EXPECT_EQ(cache_.loadIndexWithCache(elsewhere, elsewhere, true), index);
    std::filesystem::remove(elsewhere + "/archive-index.json");
    EXPECT_EQ(cache_.loadIndexWithCache(elsewhere, elsewhere, true), std::nullopt);
    EXPECT_TRUE(keepsCopy(elsewhere));
}

} // namespace
} // namespace corvane::testing
