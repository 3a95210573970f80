#include "platform/linux/mount_table.h"

#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TemporaryHome;

constexpr std::string_view table = R"(22 27 0:21 / /proc rw,relatime - proc proc rw
27 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw,discard
30 27 259:1 / /boot/efi rw - vfat /dev/nvme0n1p1 rw
31 27 0:45 /@home /home rw,relatime shared:2 master:7 - btrfs /dev/mapper/luks rw,subvol=/@home
40 27 8:17 / /media/anna/My\040Stick\011\134x rw,nosuid shared:300 - vfat /dev/sdb1 rw
41 27 0:60 / /mnt/nas rw - nfs4 server:/export rw
42 27 0:61 / /mnt/empty\040source rw - fuse.sshfs  rw
43 27 0:62 / /run/media/anna/USB\043 rw - fuseblk /dev/sdc1 rw
44 27 0:63 / /run/user/1000/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw
45 27 0:64 / /media/auto rw - autofs systemd-1 rw
46 41 0:65 / /mnt/nas rw - ext4 /dev/sdd1 rw
)";

std::vector<MountEntry> parsed(std::string_view rows) {
    const TemporaryHome home;
    return readMountTable(home.write("mountinfo", rows));
}

TEST(MountTable, Reading_KeepsTheRowsThatAreMounts) {
    const auto entries = parsed(std::string(table) + "\n - \n1 2 3:4 / /x rw - ext4\n"
                                                     "1 2 3:4 / relative rw - ext4 a b\n");
    ASSERT_EQ(entries.size(), 11U);
    const MountEntry& stick = entries[4];
    EXPECT_EQ(stick.id, 40);
    EXPECT_EQ(stick.device, "8:17");
    EXPECT_EQ(stick.mountPoint, "/media/anna/My Stick\t\\x");
    EXPECT_EQ(stick.fileSystemType, "vfat");
    EXPECT_EQ(stick.source, "/dev/sdb1");
    EXPECT_EQ(entries[6].source, "");
    EXPECT_THAT(readMountTable("/nowhere/mountinfo"), IsEmpty());
}

TEST(MountTable, MountHoldingAPath_IsTheDeepestAndTheLastOfEqualOnes) {
    const auto entries = parsed(table);

    struct {
        std::string_view path;
        int id;
    } const cases[] = {
        {"/", 27},
        {"/homes/x", 27},
        {"/home", 31},
        {"/home/x/y", 31},
        {"/mnt/nas/x", 46},
        {"/mnt/nasty", 27},
        {"/media/anna/My Stick\t\\x/Archive", 40},
    };

    for (const auto& [path, id] : cases) EXPECT_EQ(mountHolding(entries, path)->id, id) << path;
    EXPECT_EQ(mountHolding({}, "/"), nullptr);
    const auto visible = visibleMounts(entries);
    EXPECT_EQ(visible.size(), entries.size() - 1);
    EXPECT_EQ(std::ranges::find(visible, "/mnt/nas", &MountEntry::mountPoint)->id, 46);
}

TEST(MountTable, VolumeFlags_ComeFromTheDeviceAndElseFromThePlace) {
    const auto row = [](const std::string& point, const std::string& type) {
        return parsed("1 2 8:1 / " + point + " rw - " + type + " s rw\n").at(0);
    };
    const DeviceTraits none{};
    const DeviceTraits internalDisk{.hasRemovableMedium = false, .isExternal = false};
    const DeviceTraits usbDisk{.hasRemovableMedium = false, .isExternal = true};
    const DeviceTraits cardReader{.hasRemovableMedium = true, .isExternal = false};
    const std::optional<bool> unknown;

    struct {
        MountEntry mount;
        DeviceTraits traits;
        std::optional<bool> removable, ejectable, internal;
        bool browsable;
    } const cases[] = {
        {row("/", "ext4"), internalDisk, false, false, true, true},
        {row("/media/anna/Data", "ntfs3"), internalDisk, false, false, true, true},
        {row("/media/anna/USB", "exfat"), usbDisk, false, true, false, true},
        {row("/Volumes/Card", "vfat"), cardReader, true, true, false, true},
        {row("/backup", "ext4"), usbDisk, false, true, false, true},
        {row("/run/media/anna/image", "tmpfs"), none, false, true, false, true},
        {row("/mnt/nas", "nfs4"), none, false, true, false, true},
        {row("/srv/nas", "cifs"), none, false, true, false, false},
        {row("/srv/disk", "9p"), none, false, true, false, false},
        {row("/mnt/cloud", "fuse.rclone"), none, false, true, false, true},
        {row("/mnt/safe", "fuse.encfs"), none, false, true, false, true},
        {row("/mnt/host", "virtiofs"), none, false, true, false, true},
        {row("/mnt/store", "ceph"), none, false, true, false, true},
        {row("/srv/shared", "vboxsf"), none, unknown, unknown, unknown, true},
        {row("/mnt/containers", "overlay"), none, unknown, unknown, unknown, false},
        {row("/pool", "zfs"), none, unknown, unknown, unknown, true},
        {row("/boot/efi", "vfat"), internalDisk, false, false, true, false},
        {row("/proc", "proc"), none, unknown, unknown, unknown, false},
        {row("/snap/core/1", "squashfs"), internalDisk, false, false, true, false},
        {row("/run/user/1000/gvfs", "fuse.gvfsd-fuse"), none, false, true, false, false},
        {row("/media/auto", "autofs"), none, false, true, false, false},
        {row("/media", "tmpfs"), none, unknown, unknown, unknown, false},
    };

    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.mount.mountPoint);
        const Volume volume = volumeOfMount(expected.mount, expected.traits);
        EXPECT_EQ(volume.removable, expected.removable);
        EXPECT_EQ(volume.ejectable, expected.ejectable);
        EXPECT_EQ(volume.internal, expected.internal);
        EXPECT_EQ(volume.browsable, expected.browsable);
        EXPECT_EQ(volume.name, expected.mount.mountPoint == "/"
                                   ? ""
                                   : std::filesystem::path(expected.mount.mountPoint).filename());
    }
}

TEST(MountTable, RemovableMountPoint_IsReadFromTheTextAlone) {
    struct {
        std::string_view path;
        std::string_view expected;
    } const cases[] = {
        {"/Volumes/USB/Archive", "/Volumes/USB"},
        {"/Volumes/USB", "/Volumes/USB"},
        {"/media/anna/USB/Archive/2024", "/media/anna/USB"},
        {"/media/anna/USB", "/media/anna/USB"},
        {"/media/usb0", "/media/usb0"},
        {"/media/usb0/", "/media/usb0"},
        {"/run/media/anna/USB/x", "/run/media/anna/USB"},
    };

    for (const auto& [path, expected] : cases) EXPECT_EQ(removableMountPointOf(path), expected) << path;
    for (const char* none : {"/Volumes/", "/Volumes", "/Volumes//USB", "/media/", "/run/media/anna",
                             "/mediaX/anna/USB", "/home/anna/media/USB", ""})
        EXPECT_FALSE(removableMountPointOf(none)) << none;
}

TEST(MountTable, Changes_TellOfBrowsableVolumesThatCameAndWent) {
    const std::string_view root = "1 0 8:1 / / rw - ext4 /dev/sda rw\n";
    const std::string stick = std::string(root) + "9 1 8:17 / /media/a/USB rw - vfat /dev/sdb1 rw\n";
    const std::string again = std::string(root) + "10 1 8:17 / /media/a/USB rw - vfat /dev/sdb1 rw\n";
    const std::string container = std::string(root) + "11 1 0:50 / /var/lib/x rw - overlay overlay rw\n";
    EXPECT_THAT(mountChanges(parsed(root), parsed(root)), IsEmpty());
    EXPECT_THAT(mountChanges(parsed(root), parsed(stick)), ElementsAre(MountEvent::mounted));
    EXPECT_THAT(mountChanges(parsed(stick), parsed(root)), ElementsAre(MountEvent::unmounted));
    EXPECT_THAT(mountChanges(parsed(stick), parsed(again)),
                ElementsAre(MountEvent::unmounted, MountEvent::mounted));
    EXPECT_THAT(mountChanges(parsed(root), parsed(container)), IsEmpty());
}

// A tree of sysfs with the shapes of real machines.
class DeviceTraitsTest : public ::testing::Test {
  protected:
    void addDisk(const std::string& number, const std::string& folder, const std::string& partition = {}) {
        const std::string device = partition.empty() ? folder : folder + "/" + partition;
        home_.write("sys/devices/" + folder + "/removable", "0\n");
        if (!partition.empty()) home_.write("sys/devices/" + device + "/partition", "1\n");
        home_.makeFolder("sys/dev/block");
        std::filesystem::create_directory_symlink("../../devices/" + device,
                                                  home_.at("sys/dev/block/" + number));
    }

    void write(const std::string& file, const std::string& content) {
        home_.write("sys/devices/" + file, content);
    }

    void expect(const std::string& number, std::optional<bool> medium, std::optional<bool> external) {
        const DeviceTraits traits = deviceTraits(home_.at("sys"), number);
        EXPECT_EQ(traits.hasRemovableMedium, medium) << number;
        EXPECT_EQ(traits.isExternal, external) << number;
    }

    const TemporaryHome home_;
};

TEST_F(DeviceTraitsTest, TellSticksFromDisksBuiltIn) {
    addDisk("8:1", "pci0000:00/0000:00:17.0/ata1/host0/block/sda", "sda1");
    expect("8:1", false, false);
    addDisk("8:17", "pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/host6/block/sdb", "sdb1");
    expect("8:17", false, true);
    write("pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/host6/block/sdb/removable", "1\n");
    expect("8:17", true, true);
    addDisk("8:32", "pci0000:00/0000:00:14.0/usb2/2-1/block/sdc");
    write("pci0000:00/0000:00:14.0/usb2/2-1/removable", "fixed\n");
    expect("8:32", false, false);
    addDisk("259:0", "pci0000:00/0000:00:1d.0/0000:03:00.0/nvme/nvme1/nvme1n1");
    write("pci0000:00/0000:00:1d.0/0000:03:00.0/removable", "removable\n");
    expect("259:0", false, true);
    addDisk("179:1", "platform/mmc_host/mmc0/mmc0:aaaa/block/mmcblk0", "mmcblk0p1");
    write("platform/mmc_host/mmc0/mmc0:aaaa/block/mmcblk0/device/type", "SD\n");
    expect("179:1", true, false);
    expect("99:9", std::nullopt, std::nullopt);
}

TEST_F(DeviceTraitsTest, LookThroughEncryptionAndStopAtLoops) {
    addDisk("8:17", "pci0000:00/usb1/1-2/block/sdb", "sdb1");
    addDisk("253:0", "virtual/block/dm-0");
    home_.makeFolder("sys/devices/virtual/block/dm-0/slaves");
    std::filesystem::create_directory_symlink("../../../../pci0000:00/usb1/1-2/block/sdb/sdb1",
                                              home_.at("sys/devices/virtual/block/dm-0/slaves/sdb1"));
    expect("253:0", false, true);
    addDisk("253:1", "virtual/block/dm-1");
    home_.makeFolder("sys/devices/virtual/block/dm-1/slaves");
    std::filesystem::create_directory_symlink("../../dm-1",
                                              home_.at("sys/devices/virtual/block/dm-1/slaves/dm-1"));
    expect("253:1", false, false);
}

} // namespace
} // namespace corvane::platform
