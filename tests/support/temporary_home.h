// A fresh home directory for one test, removed with its owner, and small helpers to fill it.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace corvane::testing {

class TemporaryHome {
  public:
    TemporaryHome();
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;
    ~TemporaryHome();

    [[nodiscard]] const std::string& path() const { return path_; }

    // An absolute path below the home.
    [[nodiscard]] std::string at(std::string_view relativePath) const;

    // Writes a file below the home with its missing folders, and returns its path.
    std::string write(std::string_view relativePath, std::string_view content) const;

    std::string makeFolder(std::string_view relativePath) const;

    // The platform of this system with this home.
    [[nodiscard]] platform::Platform& platform() const { return *platform_; }

  private:
    std::string path_;
    std::unique_ptr<platform::Platform> platform_;
};

std::string readWhole(const std::string& path);

// Sets TZ for the life of the object.
class TimeZoneGuard {
  public:
    explicit TimeZoneGuard(const char* zone);
    ~TimeZoneGuard();

  private:
    std::string earlier_;
    bool hadEarlier_ = false;
};

} // namespace corvane::testing
