// A platform whose answers a test chooses: the sqlite3 shell, the temporary folder, the worker's places.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "support/temporary_home.h"

namespace corvane::testing {

class ScriptedPlatform final : public platform::Platform {
  public:
    explicit ScriptedPlatform(const TemporaryHome& home);

    std::string shell = "/usr/bin/sqlite3";
    std::string temporary;
    std::vector<std::string> resourceFolders;
    std::vector<std::string> runtimes;

    // Makes the shell a script of these lines.
    void setShellScript(const std::string& lines);

    [[nodiscard]] std::string realUserHomeDirectory() const override { return home_.path(); }

    [[nodiscard]] std::string applicationSupportDirectory() const override { return home_.at("support"); }

    [[nodiscard]] std::string settingsPath() const override { return home_.at("settings.json"); }

    [[nodiscard]] std::string temporaryDirectory() const override { return temporary; }

    [[nodiscard]] std::string sqliteShellPath() const override { return shell; }

    [[nodiscard]] std::vector<std::string> programResourceFolders() const override { return resourceFolders; }

    [[nodiscard]] std::vector<std::string> pythonRuntimes() const override { return runtimes; }

    [[nodiscard]] std::optional<std::vector<platform::Volume>> mountedVolumes() const override { return {}; }

    [[nodiscard]] std::optional<platform::Volume> volumeOf(const std::string&) const override { return {}; }

    [[nodiscard]] std::optional<std::string> removableMountPoint(const std::string&) const override {
        return {};
    }

    [[nodiscard]] std::optional<std::string> fileSystemTypeName(const std::string&) const override {
        return {};
    }

    [[nodiscard]] std::optional<std::int64_t> availableCapacity(const std::string&) const override {
        return {};
    }

    [[nodiscard]] bool isCloudPlaceholder(const std::string&) const override { return false; }

    void markHidden(const std::string&) const override {}

    [[nodiscard]] std::unique_ptr<platform::MountSubscription>
    subscribeToMounts(std::function<void(platform::MountEvent)>) const override {
        return nullptr;
    }

  private:
    const TemporaryHome& home_;
};

// Names of what is left in the temporary folder of a platform.
std::vector<std::string> leftoversIn(const platform::Platform& platform);

} // namespace corvane::testing
