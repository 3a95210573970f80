#include "locations/places/destination_detection.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <gtest/gtest.h>

#include "locations/archive_samples.h"
#include "locations/loading/archive_discovery.h"
#include "locations/places/folder_listing.h"
#include "support/faulty_file_layer.h"
#include "support/scripted_platform.h"
#include "support/temporary_home.h"

namespace corvane::testing {
namespace {

constexpr const char* iCloud = "Library/Mobile Documents/com~apple~CloudDocs";

class DestinationDetection : public ::testing::Test {
  protected:
    TemporaryHome home_;
    ScriptedPlatform platform_{home_};
};

TEST_F(DestinationDetection, NamesCloudFoldersWithICloudFirst) {
    home_.makeFolder(iCloud);
    home_.makeFolder("Library/CloudStorage/OneDrive-Firma");
    home_.makeFolder("Library/CloudStorage/Nutstore-me@x.cn");
    home_.makeFolder("Library/CloudStorage/Box");
    home_.makeFolder("Library/CloudStorage/Odd-");
    home_.makeFolder("Library/CloudStorage/.hidden");
    home_.write("Library/CloudStorage/AFile-x", "");
    std::filesystem::create_symlink(home_.at("nowhere"), home_.at("Library/CloudStorage/Broken"));

    std::vector<std::string> shown;
    PlaceLooks looks(platform_, platform::posixFileLayer(), {});
    for (const auto& provider : detectCloudStorage(looks, platform_)) {
        EXPECT_TRUE(provider.hasAnswered);
        shown.push_back(provider.name + "|" + provider.detail.value_or("-") + "|" + provider.icon);
    }
    EXPECT_EQ(shown, (std::vector<std::string>{"iCloud 云盘|-|icloud.fill", "Box|-|cloud.fill",
                                               "坚果云|me@x.cn|cloud.fill", "Odd|-|cloud.fill",
                                               "OneDrive|Firma|cloud.fill"}));
}

TEST_F(DestinationDetection, APlaceThatDoesNotAnswerIsListedAndTold) {
    home_.makeFolder(iCloud);
    testing::FaultyFileLayer files;
    files.inject({.at = 1, .effect = testing::Effect::hang, .operation = testing::FileOperation::stat});
    PlaceLooks looks(platform_, files, {}, std::chrono::seconds(1));
    const auto found = detectCloudStorage(looks, platform_);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_FALSE(found[0].hasAnswered);
    const auto inIt = listWithin(looks, home_.at(iCloud), [](PlaceLook&) { return FolderListing(); });
    EXPECT_EQ(inIt.error, std::errc::timed_out);
}

TEST_F(DestinationDetection, FindsTheUsersFilesInAGoogleDriveFolder) {
    const struct {
        const char* root;
        std::vector<std::string> folders;
        const char* expected; // relative to the root
    } cases[] = {
        {"GoogleDrive-a", {"Mi unidad", "Archive"}, "Mi unidad"},
        {"GoogleDrive-b", {"Mon Drive", "My Drive"}, "My Drive"},
        {"GoogleDrive-c", {"Shared drives", "Zettel", "Other computers"}, "Zettel"},
        {"GoogleDrive-d", {"Shared drives"}, ""},
        {"GoogleDrive-e", {".shortcut-targets-by-id"}, ""},
        {"GoogleDrive-f", {"Drives partage\xcc\x81s"}, ""}, // the accent apart
        {"googledrive-g", {"我的云端硬盘"}, "我的云端硬盘"},
        {"OneDrive-h", {"My Drive"}, ""},
    };

    for (const auto& [name, folders, expected] : cases) {
        const std::string root = home_.makeFolder(std::string("Library/CloudStorage/") + name);
        for (const auto& folder : folders) std::filesystem::create_directory(root + "/" + folder);
        std::ofstream(root + "/A file") << "x";
        const std::string path = *expected == '\0' ? root : root + "/" + expected;
        EXPECT_EQ(providerInfo(root).path, path);
    }
    EXPECT_EQ(providerInfo(home_.at("GoogleDrive-a")).name, "Google Drive");
    EXPECT_EQ(providerInfo(home_.at("GoogleDrive-a")).detail, "a");
}

TEST_F(DestinationDetection, ListsOnlyVolumesThatAreKnownToBeExternalAndShown) {
    platform_.setMountedVolumes(std::vector<platform::Volume>{
        {"/Volumes/Stick", "", true, true, false, true},
        {"/Volumes/Named", "我的盘", std::nullopt, std::nullopt, false, true},
        {"/Volumes/Second", "Second", false, false, true, true},
        {"/Volumes/Hidden", "Hidden", true, true, false, false},
        {"/Volumes/Unknown", "Unknown", true, true, std::nullopt, true},
        {"/Volumes/Unseen", "Unseen", true, true, false, std::nullopt},
    });
    EXPECT_EQ(detectRemovableVolumes(platform_),
              (std::vector<CloudStorageProvider>{
                  {"/Volumes/Stick", "Stick", "U 盘 / 外置盘", "/Volumes/Stick", "externaldrive.fill"},
                  {"/Volumes/Named", "我的盘", "U 盘 / 外置盘", "/Volumes/Named", "externaldrive.fill"}}));
    platform_.setMountedVolumes(std::nullopt);
    EXPECT_TRUE(detectRemovableVolumes(platform_).empty());
}

TEST_F(DestinationDetection, ArchivesAreFoundInASpotAndOneLevelBelow) {
    const auto index = sampleIndex(1, {"mid:a"});
    const std::string inICloud = writeArchive(home_, std::string(iCloud) + "/邮件", index);
    writeArchive(home_, std::string(iCloud) + "/deep/er", index);
    writeArchive(home_, std::string(iCloud) + "/.hidden", index);
    const std::string drive = writeArchive(home_, "Library/CloudStorage/GoogleDrive-a/My Drive/Mail", index);
    const std::string disk = writeArchive(home_, "Volumes/STICK", index);
    const std::string onDisk = writeArchive(home_, "Volumes/STICK/Mail", index);
    platform_.plugIn("STICK");

    const auto discovered = [&] {
        PlaceLooks looks(platform_, platform::posixFileLayer(), {});
        return discoverArchiveRoots(platform_, looks);
    };
    EXPECT_EQ(discovered(), (std::vector{inICloud, drive, disk, onDisk}));
    platform_.unplug();
    EXPECT_EQ(discovered(), (std::vector{inICloud, drive}));
}

} // namespace
} // namespace corvane::testing
