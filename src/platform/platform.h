// What the system asks of an operating system. One object a program run, made by the entry and handed down by
// reference; it outlives everything. Tests derive from it to script any answer. All operations may be called
// from any thread, and those that touch a disk may block: never call them on the main thread unless said.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane::platform {

struct Volume {
    std::string path; // mount point
    std::string name; // empty when the volume has none
    // Unknown flags are absent.
    std::optional<bool> removable;
    std::optional<bool> ejectable;
    std::optional<bool> internal;
    std::optional<bool> browsable;
};

enum class MountEvent { mounted, unmounted };

// Ends the subscription when it goes.
class MountSubscription {
  public:
    virtual ~MountSubscription() = default;
};

class Platform {
  public:
    virtual ~Platform() = default;

    // The user's real home, without a trailing slash. Never blocks.
    [[nodiscard]] virtual std::string realUserHomeDirectory() const = 0;

    // The folder that holds "Corvane", the application's own data. It need not exist. Never blocks.
    [[nodiscard]] virtual std::string applicationSupportDirectory() const = 0;

    // The file of the settings. Never blocks.
    [[nodiscard]] virtual std::string settingsPath() const = 0;

    // An absolute folder for files that needn't outlive the program. Never blocks.
    [[nodiscard]] virtual std::string temporaryDirectory() const = 0;

    // Where the sqlite3 command-line shell lies; it need not exist. Never blocks.
    [[nodiscard]] virtual std::string sqliteShellPath() const = 0;

    // Folders that may hold files that belong to the program, in the order in which to look. They need not
    // exist. Never blocks.
    [[nodiscard]] virtual std::vector<std::string> programResourceFolders() const { return {}; }

    // Where this system keeps a Python 3 runtime, in the order in which to look. Never blocks.
    [[nodiscard]] virtual std::vector<std::string> pythonRuntimes() const { return {}; }

    // Mounted volumes, the hidden ones too; absent when the system can't tell.
    [[nodiscard]] virtual std::optional<std::vector<Volume>> mountedVolumes() const = 0;

    // The volume that holds a path, which need not exist; absent when it can't be told.
    [[nodiscard]] virtual std::optional<Volume> volumeOf(const std::string& path) const = 0;

    // The mount point of a path that lies where this system mounts removable media ("/Volumes/", "/media/",
    // "/run/media/"), mounted or not; absent for a path elsewhere. Text only, never blocks.
    [[nodiscard]] virtual std::optional<std::string> removableMountPoint(const std::string& path) const = 0;

    // Type name as the system spells it ("msdos", "exfat", "apfs", "ext4"); absent when it can't be told.
    [[nodiscard]] virtual std::optional<std::string> fileSystemTypeName(const std::string& path) const = 0;

    // Bytes available to the user at a path, or at its nearest existing parent; absent when unreadable.
    [[nodiscard]] virtual std::optional<std::int64_t> availableCapacity(const std::string& path) const = 0;

    // Whether a cloud provider holds only a placeholder of this file.
    [[nodiscard]] virtual bool isCloudPlaceholder(const std::string& path) const = 0;

    // Asks the cloud provider for the content of such a file and returns without waiting for it; it comes
    // later or never. No effect for any other file.
    virtual void requestDownload(const std::string& /*path*/) const {}

    // Hides a file from listings where the system has such a flag; without it there is no effect. A failure
    // isn't reported.
    virtual void markHidden(const std::string& path) const = 0;

    // Throws std::system_error when the system can't be asked. `handler` runs on a thread of the platform for
    // every volume that comes or goes.
    [[nodiscard]] virtual std::unique_ptr<MountSubscription>
    subscribeToMounts(std::function<void(MountEvent)> handler) const = 0;

    // Opens a file or folder (absolute path) or an address ("message:...") with the program that the user's
    // desktop has for it. False when there is no desktop, or it refused. Takes up to some seconds.
    [[nodiscard]] virtual bool open(const std::string& /*target*/) const { return false; }

    // Shows a file, marked, in the file manager, or at least its folder. Otherwise as open().
    [[nodiscard]] virtual bool reveal(const std::string& /*path*/) const { return false; }

    // The page of the system's settings where the user lets this program read Mail's data; false where the
    // system has none.
    [[nodiscard]] virtual bool openPrivacySettings() const { return false; }
};

// The platform of this system. `home` replaces the user's home for the whole run (support folder and settings
// below it, no XDG variables); empty for the real one.
std::unique_ptr<Platform> makePlatform(const std::string& home);

} // namespace corvane::platform
