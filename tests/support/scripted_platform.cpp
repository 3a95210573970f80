#include "support/scripted_platform.h"

#include <filesystem>
#include <system_error>

#include "platform/paths.h"

namespace corvane::testing {

namespace fs = std::filesystem;

ScriptedPlatform::ScriptedPlatform(const TemporaryHome& home)
  : temporary(home.makeFolder("tmp"))
  , home_(home)
  , real_(home.platform())
  , volumesFolder_(home.at("Volumes")) {}

void ScriptedPlatform::setShellScript(const std::string& lines) {
    shell = home_.write("shell.sh", "#!/bin/sh\n" + lines + "\n");
    fs::permissions(shell, fs::perms::owner_all);
}

void ScriptedPlatform::setMountedVolumes(std::optional<std::vector<platform::Volume>> volumes) {
    const std::lock_guard lock(mutex_);
    volumes_ = std::move(volumes);
}

void ScriptedPlatform::plugIn(const std::string& name) {
    const platform::Volume disk{platform::joinPath(volumesFolder_, name), name, true, true, false, true};
    setMountedVolumes(std::vector{disk});
}

void ScriptedPlatform::unplug() {
    setMountedVolumes(std::vector<platform::Volume>());
}

std::optional<std::vector<platform::Volume>> ScriptedPlatform::mountedVolumes() const {
    const int number = ++calls_;
    if (hook_) hook_(number);
    const std::lock_guard lock(mutex_);
    return volumes_;
}

std::optional<platform::Volume> ScriptedPlatform::volumeOf(const std::string&) const {
    if (volumeOfHook_) volumeOfHook_();
    return volumeOfPaths_;
}

std::optional<std::string> ScriptedPlatform::removableMountPoint(const std::string& path) const {
    if (!path.starts_with(volumesFolder_ + "/")) return std::nullopt;
    return path.substr(0, path.find('/', volumesFolder_.size() + 1));
}

std::optional<std::int64_t> ScriptedPlatform::availableCapacity(const std::string& path) const {
    if (capacityHook_) capacityHook_();
    return capacity ? capacity : real_.availableCapacity(path);
}

std::unique_ptr<platform::MountSubscription>
ScriptedPlatform::subscribeToMounts(std::function<void(platform::MountEvent)> handler) const {
    struct Subscription : platform::MountSubscription {
        std::shared_ptr<std::function<void(platform::MountEvent)>> handler;
    };

    auto subscription = std::make_unique<Subscription>();
    subscription->handler = std::make_shared<std::function<void(platform::MountEvent)>>(std::move(handler));
    mountHandler_ = subscription->handler;
    return subscription;
}

void ScriptedPlatform::sendMountEvent(platform::MountEvent event) const {
    if (const auto handler = mountHandler_.lock()) (*handler)(event);
}

std::vector<std::string> ScriptedPlatform::askedOfDesktop() const {
    const std::lock_guard lock(mutex_);
    return asked_;
}

bool ScriptedPlatform::asked(std::string question) const {
    const std::lock_guard lock(mutex_);
    asked_.push_back(std::move(question));
    return true;
}

std::vector<std::string> leftoversIn(const platform::Platform& platform) {
    std::vector<std::string> names;
    std::error_code noFolder;
    for (const auto& entry : fs::directory_iterator(platform.temporaryDirectory(), noFolder))
        names.push_back(entry.path().string());
    return names;
}

} // namespace corvane::testing
