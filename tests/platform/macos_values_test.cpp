// What a Mac's part of the platform concludes, over values of the form that a Mac gives; runs anywhere.
#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/cloud_placeholder.h"
#include "platform/macos/desktop_commands.h"
#include "platform/macos/menu_rules.h"
#include "platform/macos/mount_values.h"
#include "platform/macos/user_places.h"
#include "platform/processes/desktop_program.h"
#include "support/temporary_home.h"
#include "text/split.h"

namespace corvane::platform::macos {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TemporaryHome;

// Made up in the form in which mount(8) prints, not recorded: the system's own volumes, two sticks, a disk
// image and a server.
constexpr std::string_view mountOutput = R"(/dev/disk3s1s1 on / (apfs, sealed, local, read-only, journaled)
devfs on /dev (devfs, local, nobrowse)
/dev/disk3s6 on /System/Volumes/VM (apfs, local, noexec, journaled, noatime, nobrowse)
/dev/disk3s5 on /System/Volumes/Data (apfs, local, journaled, nobrowse, protect)
map auto_home on /System/Volumes/Data/home (autofs, automounted, nobrowse)
map -hosts on /net (autofs, automounted)
/dev/disk4s1 on /Volumes/NO NAME (msdos, local, nodev, nosuid, noowners)
/dev/disk5s2 on /Volumes/归档 (1) (hfs, local, nodev, nosuid, journaled, noowners)
/dev/disk6s1 on /Volumes/Installer (hfs, local, nodev, nosuid, read-only, noowners, quarantine, mounted by anna)
//anna@nas._smb._tcp.local/mail on /Volumes/mail (smbfs, nodev, nosuid, mounted by anna)
)";

Mount mountOfRow(std::string_view row) {
    const std::size_t on = row.find(" on ");
    const std::size_t options = row.rfind(" (");
    const auto words = text::splitText(row.substr(options + 2, row.size() - options - 3), ',');
    Mount mount{.mountPoint = std::string(row.substr(on + 4, options - on - 4)),
                .fileSystemType = std::string(words.front()),
                .source = std::string(row.substr(0, on)),
                .id = "1:25"};
    for (const auto& word : words) {
        if (word == " local") mount.flags |= localMount;
        if (word == " read-only") mount.flags |= readOnlyMount;
        if (word == " nobrowse") mount.flags |= unbrowsableMount;
    }
    return mount;
}

std::vector<Mount> sampleMounts() {
    std::vector<Mount> mounts;
    for (const std::string_view row : text::splitText(mountOutput, '\n')) {
        if (!row.empty()) mounts.push_back(mountOfRow(row));
    }
    return mounts;
}

const Mount& mountAt(const std::vector<Mount>& mounts, std::string_view point) {
    return *std::ranges::find(mounts, point, &Mount::mountPoint);
}

TEST(MacosMounts, AVolumeIsWhatTheSystemTellsOfItAndAServersIsNeverAsked) {
    const VolumeProperties internalDisk{"Macintosh HD", false, false, true, true};
    const VolumeProperties stick{"NO NAME", true, true, false, true};
    const VolumeProperties image{"Installer", false, true, std::nullopt, true};
    // Recorded (github.com/Hammerspoon/hammerspoon, issues 1740 and 2885): a disk on a cable is neither
    // removable nor ejectable, only not internal; a card in a Mac's own slot is internal.
    const VolumeProperties cableDisk{"Plutonium TM", false, false, false, true};
    const VolumeProperties card{std::nullopt, true, true, true, true};

    struct {
        std::string point;
        VolumeProperties properties;
        bool isAsked;
        std::string name;
        std::optional<bool> removable, ejectable, internal, browsable;
    } const cases[] = {
        {"/", internalDisk, true, "Macintosh HD", false, false, true, true},
        {"/", {}, true, "", {}, {}, {}, true},
        {"/System/Volumes/Data", {}, true, "Data", {}, {}, {}, false},
        {"/Volumes/NO NAME", stick, true, "NO NAME", true, true, false, true},
        {"/Volumes/归档 (1)", {}, true, "归档 (1)", {}, {}, {}, true},
        {"/Volumes/归档 (1)", cableDisk, true, "Plutonium TM", false, false, false, true},
        {"/Volumes/NO NAME", card, true, "NO NAME", true, true, true, true},
        {"/Volumes/Installer", image, true, "Installer", false, true, {}, true},
        {"/Volumes/mail", {}, false, "mail", false, true, false, true},
        {"/net", {}, false, "net", false, true, false, false},
    };

    const auto mounts = sampleMounts();
    for (const auto& expected : cases) {
        const Mount& mount = mountAt(mounts, expected.point);
        const Volume volume = volumeOfMount(mount, expected.properties);
        EXPECT_EQ(isOnThisMachine(mount), expected.isAsked) << expected.point;
        EXPECT_EQ(volume.path, expected.point);
        EXPECT_EQ(volume.name, expected.name);
        EXPECT_EQ(volume.removable, expected.removable) << expected.point;
        EXPECT_EQ(volume.ejectable, expected.ejectable) << expected.point;
        EXPECT_EQ(volume.internal, expected.internal) << expected.point;
        EXPECT_EQ(volume.browsable, expected.browsable) << expected.point;
    }
}

// As people's Macs printed it: macOS 11 with macFUSE (github.com/libyal/libfsapfs, issue 47), 10.13 started
// from a second volume (github.com/yujitach/MenuMeters, issue 63).
TEST(MacosMounts, RecordedListsShowWhatPeopleSee) {
    struct {
        std::string_view row;
        bool isAsked, isBrowsable;
    } const rows[] = {
        {"/dev/disk1s5s1 on / (apfs, sealed, local, read-only, journaled)", true, true},
        {"devfs on /dev (devfs, local, nobrowse)", true, false},
        {"/dev/disk1s1 on /System/Volumes/Data (apfs, local, journaled, nobrowse)", true, false},
        {"map auto_home on /System/Volumes/Data/home (autofs, automounted, nobrowse)", false, false},
        {"fsapfsmount@macfuse0 on /Volumes/Test (macfuse, synchronous)", false, true},
        {"/dev/disk2s4 on /private/var/vm (apfs, local, noexec, journaled, noatime, nobrowse)", true, false},
        {"/dev/disk1 on /Volumes/SierraStartup (hfs, local, journaled)", true, true},
        {"map -hosts on /net (autofs, nosuid, automounted, nobrowse)", false, false},
    };

    for (const auto& [row, isAsked, isBrowsable] : rows) {
        EXPECT_EQ(isOnThisMachine(mountOfRow(row)), isAsked) << row;
        EXPECT_EQ(volumeOfMount(mountOfRow(row), {}).browsable, isBrowsable) << row;
    }
}

TEST(MacosMounts, EventsTellOfVolumesThatPeopleSee) {
    const auto all = sampleMounts();
    const auto without = [&](std::string_view point) {
        auto mounts = all;
        std::erase_if(mounts, [&](const Mount& mount) { return mount.mountPoint == point; });
        return mounts;
    };
    auto pluggedAgain = all;
    std::ranges::find(pluggedAgain, "/Volumes/NO NAME", &Mount::mountPoint)->id = "2:25";
    EXPECT_THAT(mountChanges(all, all), IsEmpty());
    EXPECT_THAT(mountChanges(without("/Volumes/mail"), all), ElementsAre(MountEvent::mounted));
    EXPECT_THAT(mountChanges(all, without("/Volumes/mail")), ElementsAre(MountEvent::unmounted));
    EXPECT_THAT(mountChanges(all, pluggedAgain), ElementsAre(MountEvent::unmounted, MountEvent::mounted));
    EXPECT_THAT(mountChanges(without("/System/Volumes/VM"), all), IsEmpty());
    EXPECT_THAT(mountChanges(without("/net"), all), IsEmpty());
}

TEST(MacosPaths, VolumesAreWhatLiesInTheirFolder) {
    EXPECT_EQ(removableMountPointOf("/Volumes/NO NAME/Mail/2019"), "/Volumes/NO NAME");
    EXPECT_EQ(removableMountPointOf("/Volumes/归档"), "/Volumes/归档");
    for (const auto* path :
         {"/Volumes", "/Volumes/", "/Volumes//x", "/Users/anna/Volumes/x", "/volumes/x", ""})
        EXPECT_FALSE(removableMountPointOf(path)) << path;
}

TEST(MacosPaths, PlacesOfTheUserAndTheBundle) {
    EXPECT_EQ(userPlaces("/Users/anna").applicationSupport, "/Users/anna/Library/Application Support");
    EXPECT_EQ(userPlaces("/Users/anna").settings, "/Users/anna/Library/Preferences/app.corvane.Corvane.json");
    EXPECT_THAT(resourceFolders("/Applications/Corvane.app/Contents/MacOS"),
                ElementsAre("/Applications/Corvane.app/Contents/Resources",
                            "/Applications/Corvane.app/Contents/MacOS"));
    EXPECT_THAT(resourceFolders("/opt/homebrew/bin"),
                ElementsAre("/opt/homebrew/bin", "/opt/homebrew/share/corvane"));
    EXPECT_THAT(resourceFolders(""), IsEmpty());
    EXPECT_EQ(temporaryFolder("/private/tmp/", "/var/folders/x/T/"), "/private/tmp");
    EXPECT_EQ(temporaryFolder("relative", "/var/folders/x/T/"), "/var/folders/x/T");
    EXPECT_EQ(temporaryFolder("", ""), "/tmp");
}

TEST(MacosSpace, WhatTheSystemWouldClearAwayCountsWhereItKnows) {
    EXPECT_EQ(availableBytes(300, 200), 300);
    EXPECT_EQ(availableBytes(0, 200), 200); // exFAT, a disk image
    EXPECT_EQ(availableBytes({}, 200), 200);
    EXPECT_EQ(availableBytes(0, {}), std::nullopt);
}

TEST(MacosMenus, WhatTheSystemAddsGoes) {
    const auto item = [](const char* action, const char* title = "x") {
        return MenuItemFacts{.action = action, .title = title};
    };
    const auto menu = [](const char* title, std::vector<std::string> actions, bool isServices = false) {
        return MenuItemFacts{.action = "submenuAction:",
                             .title = title,
                             .hasSubmenu = true,
                             .isServicesMenu = isServices,
                             .submenuActions = std::move(actions)};
    };
    for (const auto& removed : {item("startDictation:"), item("performClose:"), item("", "全部关闭"),
                                menu("服务", {}), menu("x", {}, true), menu("语音", {"", "startSpeaking:"})})
        EXPECT_TRUE(shouldRemove(removed)) << removed.title;
    for (const auto& kept :
         {item("terminate:"), item("", "服务"), menu("x", {}), menu("x", {"", "copy:", "startSpeaking:"})})
        EXPECT_FALSE(shouldRemove(kept)) << kept.title;
    EXPECT_EQ(titleOf("terminate:"), "退出 Corvane");
    EXPECT_EQ(titleOf("performMenuCommand:"), "");
}

TEST(MacosMenus, SeparatorsStandOnlyBetweenEntries) {
    EXPECT_THAT(superfluousSeparators({true, false, true, true, false, true, true}), ElementsAre(0, 3, 5, 6));
    EXPECT_THAT(superfluousSeparators({false, true, false}), IsEmpty());
    EXPECT_THAT(superfluousSeparators({true, true}), ElementsAre(0, 1));
    EXPECT_THAT(superfluousSeparators({}), IsEmpty());
}

TEST(CloudPlaceholder, NamesLeadThereAndBack) {
    EXPECT_EQ(cloudPlaceholderPath("/a/b/信.eml"), "/a/b/.信.eml.icloud");
    EXPECT_EQ(nameBehindPlaceholder(".信.eml.icloud"), "信.eml");
    for (const auto* name : {"信.eml", ".icloud", "..icloud.eml", "a.icloud", ""})
        EXPECT_FALSE(nameBehindPlaceholder(name)) << name;
}

TEST(MacosCommands, NothingIsOpenedThatIsNeitherAPathNorAnAddress) {
    const auto argumentsOf = [](const std::optional<ProgramCommand>& command) { return command->arguments; };
    EXPECT_THAT(argumentsOf(openCommand("/Users/anna/-R 信.eml")), ElementsAre("/Users/anna/-R 信.eml"));
    EXPECT_THAT(argumentsOf(openCommand("message:%3Ca@b%3E")), ElementsAre("message:%3Ca@b%3E"));
    EXPECT_THAT(argumentsOf(revealCommand("/a/b")), ElementsAre("-R", "/a/b"));
    for (const auto* target : {"-a", "", "relative/path", ":x", "1x:y", "a b:c"})
        EXPECT_FALSE(openCommand(target)) << target;
    EXPECT_FALSE(revealCommand("-a"));
}

// The shell of this system stands for the Mac's: both limit in blocks of the standard.
TEST(MacosCommands, TheLimitOfFileSizesIsSetByTheShellBeforeTheProgram) {
    const TemporaryHome home;
    const std::string path = home.at("answer");
    ChildProcessOptions options{.executable = "/bin/dd",
                                .arguments = {"if=/dev/zero", "of=" + path, "bs=100", "count=100"}};
    options.fileSizeLimitBytes = 1000;
    const ChildProcessOptions limited = withLimitByShell(options);
    EXPECT_FALSE(limited.fileSizeLimitBytes);
    EXPECT_NE(ChildProcess(limited).wait(), 0);
    EXPECT_EQ(std::filesystem::file_size(path), 1024U);
}

TEST(DesktopProgram, OnlyAGoodEndInTimeIsASuccess) {
    using namespace std::chrono_literals;
    EXPECT_TRUE(runBriefly({"/bin/sh", {"-c", "exit 0"}}, 10s));
    EXPECT_FALSE(runBriefly({"/bin/sh", {"-c", "exit 1"}}, 10s));
    EXPECT_FALSE(runBriefly({"/bin/sh", {"-c", "sleep 60"}}, 10ms));
    EXPECT_FALSE(runBriefly({"/no/such/program", {}}, 10s));
}

} // namespace
} // namespace corvane::platform::macos
