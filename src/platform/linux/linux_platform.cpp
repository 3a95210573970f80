#include <cstdint>
#include <utility>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include "platform/files/directory.h"
#include "platform/home_places.h"
#include "platform/linux/desktop_commands.h"
#include "platform/linux/mount_table.h"
#include "platform/linux/mount_watch.h"
#include "platform/paths.h"
#include "platform/platform.h"
#include "platform/processes/desktop_program.h"

namespace corvane::platform {

namespace {

constexpr std::chrono::seconds desktopPatience{5};

// The XDG base directories: a relative path there is to be ignored.
std::string baseFolder(const char* variable, const std::string& fallback) {
    const std::string folder = environmentText(variable);
    return folder.starts_with('/') ? standardizedPath(folder) : fallback;
}

// Some file systems (btrfs) have a device number of their own and name the disk only as the source.
std::string diskOf(const MountEntry& mount) {
    struct stat source{};
    if (!mount.device.starts_with("0:") || !mount.source.starts_with("/dev/")) return mount.device;
    if (::stat(mount.source.c_str(), &source) != 0 || !S_ISBLK(source.st_mode)) return mount.device;
    return std::to_string(major(source.st_rdev)) + ":" + std::to_string(minor(source.st_rdev));
}

Volume describedVolume(const MountEntry& mount) {
    return volumeOfMount(mount, deviceTraits("/sys", diskOf(mount)));
}

std::optional<MountEntry> mountOf(const std::string& path) {
    const auto existing = nearestExisting(path);
    const auto resolved = existing ? resolvedPath(*existing) : std::nullopt;
    if (!resolved) return std::nullopt;
    const auto table = readMountTable();
    const MountEntry* mount = mountHolding(table, *resolved);
    if (mount == nullptr) return std::nullopt;
    return *mount;
}

// Empty when the system doesn't tell.
std::string folderOfProgram() {
    const auto program = resolvedPath("/proc/self/exe");
    return program ? std::string(parentPath(*program)) : std::string();
}

class LinuxPlatform final : public Platform {
  public:
    explicit LinuxPlatform(const std::string& home) {
        home_ = home.empty() ? homeOfUser() : standardizedPath(home);
        support_ = joinPath(home_, ".local/share");
        std::string configuration = joinPath(home_, ".config");
        if (home.empty()) {
            support_ = baseFolder("XDG_DATA_HOME", support_);
            configuration = baseFolder("XDG_CONFIG_HOME", configuration);
        }
        settings_ = joinPath(configuration, "Corvane.conf");
        temporary_ = baseFolder("TMPDIR", "/tmp");
        program_ = folderOfProgram();
    }

    [[nodiscard]] std::string realUserHomeDirectory() const override { return home_; }

    [[nodiscard]] std::string applicationSupportDirectory() const override { return support_; }

    [[nodiscard]] std::string settingsPath() const override { return settings_; }

    [[nodiscard]] std::string temporaryDirectory() const override { return temporary_; }

    [[nodiscard]] std::string sqliteShellPath() const override { return "/usr/bin/sqlite3"; }

    // Beside the program, and where packages put data: <prefix>/bin goes with <prefix>/share.
    [[nodiscard]] std::vector<std::string> programResourceFolders() const override {
        if (program_.empty()) return {};
        const std::string_view installed = parentPath(program_);
        return {program_, joinPath(installed, "share/corvane"), joinPath(installed, "libexec/corvane")};
    }

    [[nodiscard]] std::vector<std::string> pythonRuntimes() const override {
        return {"/usr/local/bin/python3", "/usr/bin/python3"};
    }

    [[nodiscard]] std::optional<std::vector<Volume>> mountedVolumes() const override {
        const auto table = readMountTable();
        if (table.empty()) return std::nullopt;
        std::vector<Volume> volumes;
        for (const auto& mount : visibleMounts(table)) volumes.push_back(describedVolume(mount));
        return volumes;
    }

    [[nodiscard]] std::optional<Volume> volumeOf(const std::string& path) const override {
        const auto mount = mountOf(path);
        if (!mount) return std::nullopt;
        return describedVolume(*mount);
    }

    [[nodiscard]] std::optional<std::string> removableMountPoint(const std::string& path) const override {
        return removableMountPointOf(path);
    }

    [[nodiscard]] std::optional<std::string> fileSystemTypeName(const std::string& path) const override {
        const auto mount = mountOf(path);
        if (!mount) return std::nullopt;
        return fileSystemName(mount->fileSystemType);
    }

    [[nodiscard]] std::optional<std::int64_t> availableCapacity(const std::string& path) const override {
        const auto existing = nearestExisting(path);
        struct statvfs space{};
        if (!existing || ::statvfs(existing->c_str(), &space) != 0) return std::nullopt;
        std::int64_t bytes = 0;
        // Some network file systems report an endless disk.
        if (__builtin_mul_overflow(space.f_bavail, space.f_frsize, &bytes)) return INT64_MAX;
        return bytes;
    }

    // No file system here keeps placeholders of files that lie elsewhere.
    [[nodiscard]] bool isCloudPlaceholder(const std::string&) const override { return false; }

    void markHidden(const std::string&) const override {}

    [[nodiscard]] std::unique_ptr<MountSubscription>
    subscribeToMounts(std::function<void(MountEvent)> handler) const override {
        return watchMounts(std::move(handler));
    }

    [[nodiscard]] bool open(const std::string& target) const override {
        return isExecutableFile(desktopOpener) && runBriefly(openCommand(target), desktopPatience);
    }

    [[nodiscard]] bool reveal(const std::string& path) const override {
        return runBriefly(revealCommand(path), desktopPatience) || open(std::string(parentPath(path)));
    }

  private:
    std::string home_;
    std::string support_;
    std::string settings_;
    std::string temporary_;
    std::string program_;
};

} // namespace

std::unique_ptr<Platform> makePlatform(const std::string& home) {
    return std::make_unique<LinuxPlatform>(home);
}

} // namespace corvane::platform
