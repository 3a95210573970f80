#include <array>
#include <cerrno>
#include <cstdint>
#include <utility>

#include <mach-o/dyld.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/cloud_content.h"
#include "platform/files/cloud_placeholder.h"
#include "platform/files/directory.h"
#include "platform/home_places.h"
#include "platform/macos/cloud_download.h"
#include "platform/macos/desktop_commands.h"
#include "platform/macos/mount_list.h"
#include "platform/macos/mount_watch.h"
#include "platform/macos/user_places.h"
#include "platform/macos/volume_properties.h"
#include "platform/paths.h"
#include "platform/platform.h"
#include "platform/processes/desktop_program.h"

namespace corvane::platform {

namespace {

constexpr std::chrono::seconds desktopPatience{5};

// Empty when the system doesn't tell.
std::string folderOfProgram() {
    std::uint32_t size = 0;
    ::_NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (size == 0 || ::_NSGetExecutablePath(path.data(), &size) != 0) return {};
    path.resize(path.find('\0'));
    const auto program = resolvedPath(path);
    return program ? std::string(parentPath(*program)) : std::string();
}

// Empty when the system doesn't tell.
std::string systemTemporaryFolder() {
    std::array<char, 1024> path{};
    const std::size_t size = ::confstr(_CS_DARWIN_USER_TEMP_DIR, path.data(), path.size());
    return size > 0 && size <= path.size() ? path.data() : "";
}

Volume describedVolume(const macos::Mount& mount) {
    const bool mayAsk = macos::isOnThisMachine(mount);
    return macos::volumeOfMount(mount, mayAsk ? macos::volumeProperties(mount.mountPoint)
                                              : macos::VolumeProperties());
}

std::optional<macos::Mount> mountHolding(const std::string& path) {
    const auto existing = nearestExisting(path);
    return existing ? macos::mountOf(*existing) : std::nullopt;
}

class MacosPlatform final : public Platform {
  public:
    explicit MacosPlatform(const std::string& home)
      : home_(home.empty() ? homeOfUser() : standardizedPath(home))
      , places_(macos::userPlaces(home_))
      , temporary_(macos::temporaryFolder(environmentText("TMPDIR"), systemTemporaryFolder()))
      , program_(folderOfProgram()) {}

    [[nodiscard]] std::string realUserHomeDirectory() const override { return home_; }

    [[nodiscard]] std::string applicationSupportDirectory() const override {
        return places_.applicationSupport;
    }

    [[nodiscard]] std::string settingsPath() const override { return places_.settings; }

    [[nodiscard]] std::string temporaryDirectory() const override { return temporary_; }

    [[nodiscard]] std::string sqliteShellPath() const override { return "/usr/bin/sqlite3"; }

    [[nodiscard]] std::vector<std::string> programResourceFolders() const override {
        return macos::resourceFolders(program_);
    }

    [[nodiscard]] std::vector<std::string> pythonRuntimes() const override { return macos::pythonRuntimes(); }

    [[nodiscard]] std::optional<std::vector<Volume>> mountedVolumes() const override {
        const auto mounts = macos::mountedFileSystems();
        if (!mounts) return std::nullopt;
        std::vector<Volume> volumes;
        for (const macos::Mount& mount : *mounts) volumes.push_back(describedVolume(mount));
        return volumes;
    }

    [[nodiscard]] std::optional<Volume> volumeOf(const std::string& path) const override {
        const auto mount = mountHolding(path);
        if (!mount) return std::nullopt;
        return describedVolume(*mount);
    }

    [[nodiscard]] std::optional<std::string> removableMountPoint(const std::string& path) const override {
        return macos::removableMountPointOf(path);
    }

    [[nodiscard]] std::optional<std::string> fileSystemTypeName(const std::string& path) const override {
        const auto mount = mountHolding(path);
        if (!mount) return std::nullopt;
        return mount->fileSystemType;
    }

    [[nodiscard]] std::optional<std::int64_t> availableCapacity(const std::string& path) const override {
        const auto existing = nearestExisting(path);
        if (!existing) return std::nullopt;
        const auto plain = macos::plainFreeBytes(*existing);
        const auto mount = macos::mountOf(*existing);
        if (!mount || !macos::isOnThisMachine(*mount)) return plain;
        return macos::availableBytes(macos::importantFreeBytes(*existing), plain);
    }

    // Newer systems keep the file without its content; older ones put a placeholder in its place.
    [[nodiscard]] bool isCloudPlaceholder(const std::string& path) const override {
        struct stat status{};
        if (::stat(path.c_str(), &status) == 0) return isOnlyInCloud(status);
        return errno == ENOENT && fileExists(cloudPlaceholderPath(path));
    }

    void requestDownload(const std::string& path) const override { macos::startCloudDownload(path); }

    void markHidden(const std::string& path) const override {
        struct stat status{};
        if (::stat(path.c_str(), &status) != 0 || (status.st_flags & UF_HIDDEN) != 0) return;
        ::chflags(path.c_str(), status.st_flags | UF_HIDDEN);
    }

    [[nodiscard]] std::unique_ptr<MountSubscription>
    subscribeToMounts(std::function<void(MountEvent)> handler) const override {
        return macos::watchMounts(std::move(handler));
    }

    [[nodiscard]] bool open(const std::string& target) const override {
        const auto command = macos::openCommand(target);
        return command && runBriefly(*command, desktopPatience);
    }

    [[nodiscard]] bool reveal(const std::string& path) const override {
        const auto command = macos::revealCommand(path);
        return command && runBriefly(*command, desktopPatience);
    }

    [[nodiscard]] bool openPrivacySettings() const override {
        return runBriefly(macos::privacySettingsCommand(), desktopPatience);
    }

  private:
    std::string home_;
    macos::UserPlaces places_;
    std::string temporary_;
    std::string program_;
};

} // namespace

std::unique_ptr<Platform> makePlatform(const std::string& home) {
    return std::make_unique<MacosPlatform>(home);
}

} // namespace corvane::platform
