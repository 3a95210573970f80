// What tests of the model share: a home of their own, a platform whose disks come and go by script, and the
// wait for everything that was started.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

#include "model/model_context.h"
#include "platform/paths.h"
#include "platform/platform.h"
#include "support/temporary_home.h"

namespace corvane::testing {

// Removable disks are folders of "Volumes" in the home; a disk is there while it is listed as mounted.
// Thread-safe.
class ScriptedPlatform : public platform::Platform {
  public:
    explicit ScriptedPlatform(const TemporaryHome& home)
      : real_(home.platform())
      , volumesFolder_(home.at("Volumes")) {}

    void setMountedVolumes(std::optional<std::vector<platform::Volume>> volumes) {
        const std::lock_guard lock(mutex_);
        volumes_ = std::move(volumes);
    }

    void plugIn(const std::string& name) {
        const platform::Volume disk{platform::joinPath(volumesFolder_, name), name, true, true, false, true};
        setMountedVolumes(std::vector{disk});
    }

    void unplug() { setMountedVolumes(std::vector<platform::Volume>()); }

    void setVolumeOfPaths(std::optional<platform::Volume> volume) { volumeOfPaths_ = std::move(volume); }

    void setFileSystemTypeName(std::optional<std::string> name) { fileSystemTypeName_ = std::move(name); }

    // Runs at each question for the mounted volumes, with its number from 1 on.
    void onMountedVolumes(std::function<void(int)> hook) { hook_ = std::move(hook); }

    // Runs at each question for the volume of a path.
    void onVolumeOf(std::function<void()> hook) { volumeOfHook_ = std::move(hook); }

    // Runs at each question for free space, which a run asks before its first message.
    void onAvailableCapacity(std::function<void()> hook) { capacityHook_ = std::move(hook); }

    [[nodiscard]] int mountedVolumesCalls() const { return calls_; }

    [[nodiscard]] std::string realUserHomeDirectory() const override { return real_.realUserHomeDirectory(); }

    [[nodiscard]] std::string applicationSupportDirectory() const override {
        return real_.applicationSupportDirectory();
    }

    [[nodiscard]] std::string settingsPath() const override { return real_.settingsPath(); }

    [[nodiscard]] std::string temporaryDirectory() const override { return real_.temporaryDirectory(); }

    [[nodiscard]] std::string sqliteShellPath() const override { return real_.sqliteShellPath(); }

    [[nodiscard]] std::optional<std::vector<platform::Volume>> mountedVolumes() const override {
        const int number = ++calls_;
        if (hook_) hook_(number);
        const std::lock_guard lock(mutex_);
        return volumes_;
    }

    [[nodiscard]] std::optional<platform::Volume> volumeOf(const std::string&) const override {
        if (volumeOfHook_) volumeOfHook_();
        return volumeOfPaths_;
    }

    [[nodiscard]] std::optional<std::string> removableMountPoint(const std::string& path) const override {
        if (!path.starts_with(volumesFolder_ + "/")) return std::nullopt;
        return path.substr(0, path.find('/', volumesFolder_.size() + 1));
    }

    [[nodiscard]] std::optional<std::string> fileSystemTypeName(const std::string&) const override {
        return fileSystemTypeName_;
    }

    [[nodiscard]] std::optional<std::int64_t> availableCapacity(const std::string& path) const override {
        if (capacityHook_) capacityHook_();
        return real_.availableCapacity(path);
    }

    [[nodiscard]] bool isCloudPlaceholder(const std::string& path) const override {
        return real_.isCloudPlaceholder(path);
    }

    void markHidden(const std::string& path) const override { real_.markHidden(path); }

    [[nodiscard]] std::unique_ptr<platform::MountSubscription>
    subscribeToMounts(std::function<void(platform::MountEvent)>) const override {
        return nullptr;
    }

  private:
    platform::Platform& real_;
    std::string volumesFolder_;
    mutable std::mutex mutex_;
    std::optional<std::vector<platform::Volume>> volumes_ = std::vector<platform::Volume>();
    std::optional<platform::Volume> volumeOfPaths_;
    std::optional<std::string> fileSystemTypeName_;
    std::function<void(int)> hook_;
    std::function<void()> volumeOfHook_;
    std::function<void()> capacityHook_;
    mutable std::atomic<int> calls_ = 0;
};

// The event loop of a test program. Made by the first test that needs it.
inline void provideEventLoop() {
    static int argumentCount = 1;
    static char name[] = "test_model";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(argumentCount, arguments);
}

// Spins the event loop until every job and step has ended.
inline void waitUntilIdle(TaskRunner& tasks) {
    QEventLoop loop;
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&tasks, &TaskRunner::idle, &loop, &QEventLoop::quit);
    guard.start(std::chrono::seconds(60));
    while (!tasks.isIdle() && guard.isActive()) loop.exec();
    ASSERT_TRUE(tasks.isIdle()) << "the started work doesn't end";
    QCoreApplication::processEvents();
}

class ModelTest : public ::testing::Test {
  protected:
    ModelTest() { provideEventLoop(); }

    TemporaryHome home_;
    ScriptedPlatform platform_{home_};
};

} // namespace corvane::testing
