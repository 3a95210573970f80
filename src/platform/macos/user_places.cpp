#include "platform/macos/user_places.h"

#include "platform/paths.h"

namespace corvane::platform::macos {

UserPlaces userPlaces(const std::string& home) {
    const std::string library = joinPath(home, "Library");
    return {joinPath(library, "Application Support"),
            joinPath(library, "Preferences/app.corvane.Corvane.json")};
}

std::vector<std::string> resourceFolders(const std::string& programFolder) {
    if (programFolder.empty()) return {};
    const std::string_view parent = parentPath(programFolder);
    if (programFolder.ends_with(".app/Contents/MacOS")) return {joinPath(parent, "Resources"), programFolder};
    return {programFolder, joinPath(parent, "share/corvane")};
}

std::vector<std::string> pythonRuntimes() {
    return {"/Library/Frameworks/Python.framework/Versions/3.12/bin/python3", "/opt/homebrew/bin/python3",
            "/usr/local/bin/python3", "/usr/bin/python3"};
}

std::string temporaryFolder(const std::string& ofEnvironment, const std::string& ofSystem) {
    if (ofEnvironment.starts_with('/')) return standardizedPath(ofEnvironment);
    return ofSystem.starts_with('/') ? standardizedPath(ofSystem) : "/tmp";
}

} // namespace corvane::platform::macos
