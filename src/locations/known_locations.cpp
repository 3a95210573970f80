#include "locations/known_locations.h"

#include <algorithm>

#include "locations/settings_keys.h"
#include "platform/paths.h"

namespace corvane {

namespace {

std::vector<std::string> storedList(const platform::SettingsStore& settings, const char* key) {
    return settings.textList(key).value_or(std::vector<std::string>());
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

std::set<std::string> forgottenLocations(const platform::SettingsStore& settings) {
    std::set<std::string> forgotten;
    for (const std::string& path : storedList(settings, forgottenLocationsKey)) {
        forgotten.insert(platform::canonicalPath(path));
    }
    return forgotten;
}

void unforgetLocation(platform::SettingsStore& settings, std::string_view path) {
    std::vector<std::string> list = storedList(settings, forgottenLocationsKey);
    const std::string root = platform::canonicalPath(path);
    const auto removed =
        std::erase_if(list, [&](const std::string& entry) { return platform::canonicalPath(entry) == root; });
    if (removed > 0) settings.setTextList(forgottenLocationsKey, list);
}

} // namespace corvane
