#include "platform/home_places.h"

#include <cerrno>
#include <cstdlib>
#include <vector>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/paths.h"

namespace corvane::platform {

std::string environmentText(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string homeOfUser() {
    std::vector<char> buffer(4096);
    passwd entry{};
    passwd* found = nullptr;
    while (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
        buffer.resize(buffer.size() * 2);
    }
    std::string home = found != nullptr && found->pw_dir != nullptr ? found->pw_dir : "";
    if (!home.starts_with('/')) home = environmentText("HOME");
    return standardizedPath(home.starts_with('/') ? home : "/");
}

std::optional<std::string> nearestExisting(std::string_view path) {
    std::string current = standardizedPath(path);
    struct stat status{};
    while (::stat(current.c_str(), &status) != 0) {
        if ((errno != ENOENT && errno != ENOTDIR) || current == "/") return std::nullopt;
        current = parentPath(current);
    }
    return current;
}

} // namespace corvane::platform
