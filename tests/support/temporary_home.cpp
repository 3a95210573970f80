#include "support/temporary_home.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace corvane::testing {

namespace fs = std::filesystem;

TemporaryHome::TemporaryHome() {
    std::string pattern = (fs::temp_directory_path() / "corvane-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp");
    path_ = fs::canonical(pattern).string();
    platform_ = platform::makePlatform(path_);
}

TemporaryHome::~TemporaryHome() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TemporaryHome::at(std::string_view relativePath) const {
    return (fs::path(path_) / relativePath).string();
}

std::string TemporaryHome::write(std::string_view relativePath, std::string_view content) const {
    const fs::path target = at(relativePath);
    fs::create_directories(target.parent_path());
    std::ofstream(target, std::ios::binary)
        .write(content.data(), static_cast<std::streamsize>(content.size()));
    return target.string();
}

std::string TemporaryHome::makeFolder(std::string_view relativePath) const {
    fs::create_directories(at(relativePath));
    return at(relativePath);
}

std::string readWhole(const std::string& path) {
    std::ifstream input(path, std::ios::binary);
    std::ostringstream content;
    content << input.rdbuf();
    return content.str();
}

TimeZoneGuard::TimeZoneGuard(const char* zone) {
    if (const char* current = std::getenv("TZ")) {
        earlier_ = current;
        hadEarlier_ = true;
    }
    ::setenv("TZ", zone, 1);
    ::tzset();
}

TimeZoneGuard::~TimeZoneGuard() {
    if (hadEarlier_) {
        ::setenv("TZ", earlier_.c_str(), 1);
    } else {
        ::unsetenv("TZ");
    }
    ::tzset();
}

} // namespace corvane::testing
