// A platform whose answers a test chooses; the rest is that of the system over the test's home. Removable
// disks are folders of "Volumes" in the home; a disk is there while it is listed as mounted. The fields and
// hooks are set before other threads ask; everything else is thread-safe.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "platform/threads/time_limited_worker.h"
#include "support/temporary_home.h"

namespace corvane::testing {

class ScriptedPlatform final : public platform::Platform {
  public:
    // The home must outlive this platform.
    explicit ScriptedPlatform(const TemporaryHome& home);

    ~ScriptedPlatform() override { platform::waitForAbandonedJobs(); } // which may still ask it

    std::string shell = "/usr/bin/sqlite3";
    std::string temporary; // a folder of its own in the home
    std::vector<std::string> resourceFolders;
    std::vector<std::string> runtimes;

    // Makes the shell a script of these lines.
    void setShellScript(const std::string& lines);

    void setMountedVolumes(std::optional<std::vector<platform::Volume>> volumes);
    void plugIn(const std::string& name); // as the only disk
    void unplug();

    void setVolumeOfPaths(std::optional<platform::Volume> volume) { volumeOfPaths_ = std::move(volume); }

    void setFileSystemTypeName(std::optional<std::string> name) { fileSystemTypeName_ = std::move(name); }

    // Runs at each question for the mounted volumes, with its number from 1 on.
    void onMountedVolumes(std::function<void(int)> hook) { hook_ = std::move(hook); }

    // Runs at each question for the volume of a path.
    void onVolumeOf(std::function<void()> hook) { volumeOfHook_ = std::move(hook); }

    // What every place has room for, instead of what the disk says.
    std::optional<std::int64_t> capacity;

    // Runs at each question for free space, which a run asks before its first message.
    void onAvailableCapacity(std::function<void()> hook) { capacityHook_ = std::move(hook); }

    [[nodiscard]] int mountedVolumesCalls() const { return calls_; }

    [[nodiscard]] std::string realUserHomeDirectory() const override { return real_.realUserHomeDirectory(); }

    [[nodiscard]] std::string applicationSupportDirectory() const override {
        return real_.applicationSupportDirectory();
    }

    [[nodiscard]] std::string settingsPath() const override { return real_.settingsPath(); }

    [[nodiscard]] std::string temporaryDirectory() const override { return temporary; }

    [[nodiscard]] std::string sqliteShellPath() const override { return shell; }

    [[nodiscard]] std::vector<std::string> programResourceFolders() const override { return resourceFolders; }

    [[nodiscard]] std::vector<std::string> pythonRuntimes() const override { return runtimes; }

    [[nodiscard]] std::optional<std::vector<platform::Volume>> mountedVolumes() const override;
    [[nodiscard]] std::optional<platform::Volume> volumeOf(const std::string& path) const override;
    [[nodiscard]] std::optional<std::string> removableMountPoint(const std::string& path) const override;

    [[nodiscard]] std::optional<std::string> fileSystemTypeName(const std::string&) const override {
        return fileSystemTypeName_;
    }

    [[nodiscard]] std::optional<std::int64_t> availableCapacity(const std::string& path) const override;

    // Answers for files in clouds, instead of the system's "never".
    void onCloudPlaceholder(std::function<bool(const std::string&)> answer) {
        isPlaceholder_ = std::move(answer);
    }

    // Runs at each request for the content of a file.
    void onRequestDownload(std::function<void(const std::string&)> hook) { downloadHook_ = std::move(hook); }

    [[nodiscard]] bool isCloudPlaceholder(const std::string& path) const override {
        return isPlaceholder_ ? isPlaceholder_(path) : real_.isCloudPlaceholder(path);
    }

    void requestDownload(const std::string& path) const override {
        if (downloadHook_) downloadHook_(path);
    }

    // What the desktop was asked for, which it then did: "open PATH", "reveal PATH".
    [[nodiscard]] std::vector<std::string> askedOfDesktop() const;

    [[nodiscard]] bool open(const std::string& target) const override { return asked("open " + target); }

    [[nodiscard]] bool reveal(const std::string& path) const override { return asked("reveal " + path); }

    void markHidden(const std::string& path) const override { real_.markHidden(path); }

    [[nodiscard]] std::unique_ptr<platform::MountSubscription>
    subscribeToMounts(std::function<void(platform::MountEvent)> handler) const override;

    // Tells the last one that subscribed, if it still wants to know.
    void sendMountEvent(platform::MountEvent event) const;

  private:
    bool asked(std::string question) const;

    const TemporaryHome& home_;
    platform::Platform& real_;
    std::string volumesFolder_;
    mutable std::mutex mutex_;
    std::optional<std::vector<platform::Volume>> volumes_ = std::vector<platform::Volume>();
    std::optional<platform::Volume> volumeOfPaths_;
    std::optional<std::string> fileSystemTypeName_;
    std::function<void(int)> hook_;
    std::function<void()> volumeOfHook_;
    std::function<void()> capacityHook_;
    std::function<bool(const std::string&)> isPlaceholder_;
    std::function<void(const std::string&)> downloadHook_;
    mutable std::vector<std::string> asked_;
    mutable std::weak_ptr<std::function<void(platform::MountEvent)>> mountHandler_;
    mutable std::atomic<int> calls_ = 0;
};

// Names of what is left in the temporary folder of a platform.
std::vector<std::string> leftoversIn(const platform::Platform& platform);

} // namespace corvane::testing
