#include "platform/files/path_access.h"

#include <array>
#include <cstddef>
#include <string_view>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::platform {

namespace {

std::string nameOfUser(uid_t id) {
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 4096> buffer{};
    const int status = ::getpwuid_r(id, &entry, buffer.data(), buffer.size(), &found);
    return status == 0 && found != nullptr ? found->pw_name : "";
}

bool may(const std::string& path, int wanted) {
    return ::faccessat(AT_FDCWD, path.c_str(), wanted, AT_EACCESS) == 0;
}

} // namespace

PathAccess accessOf(const std::string& path) {
    PathAccess access;
    access.path = path;
    access.user = nameOfUser(::geteuid());
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0) return access;
    access.isThere = true;
    access.isFolder = S_ISDIR(status.st_mode);
    access.canRead = may(path, R_OK);
    access.canEnter = !access.isFolder || may(path, X_OK);
    access.mode = status.st_mode;
    access.ownerID = status.st_uid;
    access.owner = nameOfUser(status.st_uid);
    return access;
}

PathAccess obstacleOnTheWay(const std::string& path) {
    for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        PathAccess folder = accessOf(path.substr(0, end));
        if (folder.isThere && !folder.canEnter) return folder;
    }
    return accessOf(path);
}

std::string modeText(const PathAccess& access) {
    std::string text = access.isFolder ? "d" : "-";
    constexpr std::string_view letters = "rwxrwxrwx";
    for (std::size_t bit = 0; bit < letters.size(); ++bit)
        text += (access.mode & (0400U >> bit)) != 0 ? letters[bit] : '-';
    return text;
}

} // namespace corvane::platform
