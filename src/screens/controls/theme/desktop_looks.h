// What the files of the desktop's settings say of its looks, where no platform theme of Qt passes it on: the
// settings of GTK ("gtk-4.0/settings.ini", "gtk-3.0/settings.ini") and of KDE ("kdeglobals"). Reads a few
// small files; a missing or broken one says nothing.
#pragma once

#include <optional>

#include <QString>

namespace corvane {

struct DesktopLooks {
    std::optional<bool> animates;
    std::optional<bool> isDark;

    // Of the user's configuration folder.
    static DesktopLooks of(const QString& configFolder);
};

} // namespace corvane
