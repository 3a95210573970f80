// Which entries of a Mac's menus go. Plain values; built and tested on every system. Thread-safe.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::platform::macos {

struct MenuItemFacts {
    std::string action; // name of the selector; empty for none
    std::string title;
    bool hasSubmenu = false;
    bool isServicesMenu = false;               // its submenu is the one that the system fills with services
    std::vector<std::string> submenuActions{}; // of the submenu's items, empty texts for those without
};

// Spelling, substitutions, speech, dictation, closing of all windows, services: whatever the system adds that
// Corvane has no use for.
bool shouldRemove(const MenuItemFacts& item);

// The name of an entry that Qt puts into the application's own menu, in English; empty for any other.
std::string_view titleOf(std::string_view action);

// The separators that lead, trail or follow another one, by their places in the menu, ascending.
std::vector<std::size_t> superfluousSeparators(const std::vector<bool>& isSeparator);

} // namespace corvane::platform::macos
