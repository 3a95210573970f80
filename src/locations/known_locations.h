// The lists of archive roots in the user's settings: those ever used, and those that the user told the
// program to forget. Main thread. Paths are kept in their canonical form; settings are written only for a
// change.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/settings_store.h"

namespace corvane {

// In their order, each once. A path that can't be an archive's is left out.
std::vector<std::string> knownLocations(const platform::SettingsStore& settings);

// Replaces the list by these roots.
void setKnownLocations(platform::SettingsStore& settings, const std::vector<std::string>& roots);

// Adds a root at the end if it isn't there.
void rememberLocation(platform::SettingsStore& settings, std::string_view path);

// Takes a root away; false when it isn't there.
bool removeKnownLocation(platform::SettingsStore& settings, std::string_view path);

// The roots that the user told the program to forget.
std::set<std::string> forgottenLocations(const platform::SettingsStore& settings);

// Those of them that have been there ever since: a load that finds them leaves them forgotten. One that was
// away and comes back is known again.
std::set<std::string> forgottenPresentLocations(const platform::SettingsStore& settings);

// Adds a root to the forgotten ones, as one that is there.
void markLocationForgotten(platform::SettingsStore& settings, std::string_view path);

// A forgotten root has been away.
void markForgottenLocationAway(platform::SettingsStore& settings, std::string_view path);

// No effect when the path isn't among the forgotten ones.
void unforgetLocation(platform::SettingsStore& settings, std::string_view path);

// An ordered list of roots, each in its canonical form and once.
class RootList {
  public:
    // An empty path, and one with a character that separates the parts of an entry's id, is left out.
    void add(std::string_view path);

    [[nodiscard]] const std::vector<std::string>& roots() const { return roots_; }

    [[nodiscard]] bool contains(const std::string& root) const { return seen_.contains(root); }

  private:
    std::vector<std::string> roots_;
    std::set<std::string> seen_;
};

} // namespace corvane
