#include "locations/places/folder_listing.h"

#include <cerrno>
#include <filesystem>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/paths.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

bool isOneComponent(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

} // namespace

FolderListing listWithin(PlaceLooks& looks, const std::string& place,
                         std::function<FolderListing(PlaceLook&)> list) {
    auto listing = looks.ask<FolderListing>(place, [place, list = std::move(list)](PlaceLook& look) {
        struct stat status{};
        look.files().stat(place, status); // where a dead place hangs
        return list(look);
    });
    if (listing) return std::move(*listing);
    return {place, {}, std::make_error_code(std::errc::timed_out)};
}

FolderListing listFolders(const std::string& path, PlaceLook& look) {
    FolderListing listing{path, {}, {}};
    fs::directory_iterator entry(path, listing.error);
    for (const fs::directory_iterator end; !listing.error && entry != end; entry.increment(listing.error)) {
        look.beginStep();
        if (look.isGivenUp()) return listing;
        std::string name = entry->path().filename().string();
        std::error_code ignored;
        if (!name.starts_with('.') && entry->is_directory(ignored)) listing.names.push_back(std::move(name));
    }
    return listing;
}

FolderListing listNearestFolder(const std::string& path, const std::string& fallback, PlaceLook& look) {
    std::string candidate = path;
    while (!candidate.empty()) {
        FolderListing listing = listFolders(candidate, look);
        if (!listing.error) return listing;
        if (candidate == "/") break;
        candidate = platform::parentPath(candidate);
    }
    return listFolders(fallback, look);
}

std::string typedFolder(std::string_view text, const std::string& shown, const std::string& home) {
    if (text == "~" || text.starts_with("~/"))
        return platform::standardizedPath(home + std::string(text.substr(1)));
    if (text.starts_with('/')) return platform::standardizedPath(text);
    return platform::standardizedPath(platform::joinPath(shown, text));
}

FolderListing makeFolder(const std::string& parent, const std::string& name, PlaceLook& look) {
    if (!isOneComponent(name)) return {parent, {}, std::make_error_code(std::errc::invalid_argument)};
    const std::string path = platform::joinPath(parent, name);
    std::error_code error;
    if (fs::create_directory(path, error)) return listFolders(path, look);
    return {parent, {}, error ? error : std::make_error_code(std::errc::file_exists)};
}

std::error_code writingObstacle(const std::string& path) {
    std::error_code error;
    if (!fs::is_directory(path, error))
        return error ? error : std::make_error_code(std::errc::not_a_directory);
    if (::access(path.c_str(), W_OK | X_OK) == 0) return {};
    return {errno, std::generic_category()};
}

} // namespace corvane
