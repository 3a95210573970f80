#include "locations/known_locations.h"

#include <algorithm>

#include "platform/paths.h"
#include "records/stores/settings_keys.h"

namespace corvane {

namespace {

std::vector<std::string> storedList(const platform::SettingsStore& settings, const char* key) {
    return settings.textList(key).value_or(std::vector<std::string>());
}

// Canonical.
std::set<std::string> storedSet(const platform::SettingsStore& settings, const char* key) {
    std::set<std::string> roots;
    for (const std::string& path : storedList(settings, key)) roots.insert(platform::canonicalPath(path));
    return roots;
}

// Whether it was there, in whatever spelling.
bool removeFromList(platform::SettingsStore& settings, const char* key, std::string_view path) {
    std::vector<std::string> list = storedList(settings, key);
    const std::string root = platform::canonicalPath(path);
    const auto removed =
        std::erase_if(list, [&](const std::string& entry) { return platform::canonicalPath(entry) == root; });
    if (removed > 0) settings.setTextList(key, list);
    return removed > 0;
}

} // namespace

void RootList::add(std::string_view path) {
    if (path.empty() || path.find('\x01') != std::string_view::npos ||
        path.find('\0') != std::string_view::npos)
        return;
    std::string root = platform::canonicalPath(path);
    if (seen_.insert(root).second) roots_.push_back(std::move(root));
}

std::vector<std::string> knownLocations(const platform::SettingsStore& settings) {
    RootList list;
    for (const std::string& path : storedList(settings, knownLocationsKey)) list.add(path);
    return list.roots();
}

void setKnownLocations(platform::SettingsStore& settings, const std::vector<std::string>& roots) {
    if (storedList(settings, knownLocationsKey) != roots) settings.setTextList(knownLocationsKey, roots);
}

void rememberLocation(platform::SettingsStore& settings, std::string_view path) {
    RootList list;
    for (const std::string& known : knownLocations(settings)) list.add(known);
    list.add(path);
    setKnownLocations(settings, list.roots());
}

bool removeKnownLocation(platform::SettingsStore& settings, std::string_view path) {
    return removeFromList(settings, knownLocationsKey, path);
}

std::set<std::string> forgottenLocations(const platform::SettingsStore& settings) {
    return storedSet(settings, forgottenLocationsKey);
}

std::set<std::string> forgottenPresentLocations(const platform::SettingsStore& settings) {
    return storedSet(settings, forgottenPresentLocationsKey);
}

void markLocationForgotten(platform::SettingsStore& settings, std::string_view path) {
    for (const char* key : {forgottenLocationsKey, forgottenPresentLocationsKey}) {
        const std::string root = platform::canonicalPath(path);
        if (storedSet(settings, key).contains(root)) continue;
        std::vector<std::string> list = storedList(settings, key);
        list.push_back(root);
        settings.setTextList(key, list);
    }
}

void markForgottenLocationAway(platform::SettingsStore& settings, std::string_view path) {
    removeFromList(settings, forgottenPresentLocationsKey, path);
}

void unforgetLocation(platform::SettingsStore& settings, std::string_view path) {
    removeFromList(settings, forgottenLocationsKey, path);
    removeFromList(settings, forgottenPresentLocationsKey, path);
}

} // namespace corvane
