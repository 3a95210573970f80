#include "model/archiving/destinations.h"

#include <filesystem>

#include "locations/known_locations.h"
#include "model/model_test.h"
#include "platform/files/directory.h"
#include "records/stores/settings_keys.h"

namespace corvane::testing {
namespace {

class Destinations : public ModelTest {};

TEST_F(Destinations, WithoutADestinationNothingIsLost) {
    const DestinationFacts facts = computeDestinationFacts(platform_, std::nullopt, {});
    EXPECT_TRUE(facts.connected);
    EXPECT_FALSE(facts.onInternalDisk);
    EXPECT_EQ(facts.filesystemName, std::nullopt);
}

TEST_F(Destinations, TellOnWhatDiskTheFolderLies) {
    const std::string folder = home_.makeFolder("邮件");
    const auto unknown = std::optional<bool>();

    const struct {
        std::optional<bool> removable, ejectable, internal;
        bool onInternalDisk;
    } cases[] = {
        {true, false, true, false},      {false, true, true, false},     {false, false, true, true},
        {false, false, false, false},    {unknown, unknown, true, true}, {unknown, unknown, unknown, true},
        {false, unknown, unknown, true},
    };

    for (const auto& [removable, ejectable, internal, onInternalDisk] : cases) {
        platform_.setVolumeOfPaths(platform::Volume{"/v", "v", removable, ejectable, internal, true});
        EXPECT_EQ(computeDestinationFacts(platform_, folder, {}).onInternalDisk, onInternalDisk);
    }
    platform_.setFileSystemTypeName("msdos");
    EXPECT_EQ(computeDestinationFacts(platform_, folder, {}).filesystemName, "FAT32");

    const DestinationFacts lost = computeDestinationFacts(platform_, home_.at("gone/Dropbox"), {});
    EXPECT_FALSE(lost.connected);
    EXPECT_FALSE(lost.onInternalDisk);
    EXPECT_EQ(lost.filesystemName, std::nullopt);
    EXPECT_EQ(lost.cloudName, "Dropbox");
}

TEST_F(Destinations, SeeThroughLinksIntoAProvidersShortcuts) {
    home_.makeFolder("云/.symlinks/share");
    std::filesystem::create_directory_symlink(home_.at("云/.symlinks/share"), home_.at("share"));
    EXPECT_TRUE(computeDestinationFacts(platform_, home_.at("share"), {}).inSymlinkContainer);
    EXPECT_FALSE(computeDestinationFacts(platform_, home_.at("云"), {}).inSymlinkContainer);
}

TEST_F(Destinations, RememberedFoldersAreThoseThatNoDetectionFinds) {
    const std::string manual = home_.makeFolder("存档");
    const std::vector<std::string> known = {home_.makeFolder("Library/CloudStorage/Box-Box/m"),
                                            home_.makeFolder("Library/Mobile Documents/m"),
                                            home_.makeFolder("Volumes/STICK/m"), home_.at("deleted"), manual};
    EXPECT_EQ(computeDestinationFacts(platform_, std::nullopt, known).rememberedManualDestinations,
              std::vector{manual});
}

TEST_F(Destinations, AChoiceIsStoredAtOnceAndItsFolderMadeInTheBackground) {
    const std::string folder = home_.at("新/归档");
    {
        ModelContext context(platform_);
        ArchiveDestinations destinations(context);
        int prepared = 0;
        QObject::connect(&destinations, &ArchiveDestinations::destinationPrepared, [&] {
            ++prepared;
            EXPECT_TRUE(platform::isDirectory(folder));
        });
        destinations.setTransferDestination(folder + "/");
        EXPECT_EQ(destinations.transferDestination(), folder);
        EXPECT_EQ(prepared, 0);
        waitUntilIdle(context.tasks);
        EXPECT_EQ(prepared, 1);
        EXPECT_TRUE(destinations.facts().connected);
        destinations.setTransferDestination(folder);
        EXPECT_EQ(knownLocations(context.settings), std::vector{folder});
        waitUntilIdle(context.tasks);
    }
    ModelContext context(platform_);
    context.settings.remove(knownLocationsKey);
    const ArchiveDestinations destinations(context);
    EXPECT_EQ(destinations.transferDestination(), folder);
    EXPECT_EQ(knownLocations(context.settings), std::vector{folder});
    waitUntilIdle(context.tasks);
}

TEST_F(Destinations, AFolderThatCannotBeMadeCountsAsNotConnected) {
    const std::string blocked = home_.write("file", "x") + "/归档";
    ModelContext context(platform_);
    ArchiveDestinations destinations(context);
    int prepared = 0;
    QObject::connect(&destinations, &ArchiveDestinations::destinationPrepared, [&] { ++prepared; });
    destinations.setTransferDestination(home_.at("overtaken"));
    destinations.setTransferDestination(blocked);
    waitUntilIdle(context.tasks);
    EXPECT_EQ(prepared, 1);
    EXPECT_FALSE(destinations.facts().connected);
}

TEST_F(Destinations, SettingsOfAnyShapeGiveCleanLists) {
    ModelContext context(platform_);
    context.settings.setTextList(knownLocationsKey,
                                 {"/a/", "", "/a", "/b/../c", std::string("/x\0y", 4), "/x\x01y"});
    EXPECT_EQ(knownLocations(context.settings), (std::vector<std::string>{"/a", "/c"}));
    context.settings.setTextList(forgottenLocationsKey, {"/f/", "/g", "/f"});
    unforgetLocation(context.settings, "/f");
    EXPECT_EQ(forgottenLocations(context.settings), std::set<std::string>{"/g"});
    context.settings.setText(knownLocationsKey, "no list");
    rememberLocation(context.settings, "/a/b/");
    EXPECT_EQ(knownLocations(context.settings), std::vector<std::string>{"/a/b"});
}

} // namespace
} // namespace corvane::testing
