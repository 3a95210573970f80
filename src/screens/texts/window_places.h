// The places of the window: which there are, and how they are called. Constant.
#pragma once

#include <array>

#include <QString>

namespace corvane {

enum class SidebarPlace { home, archived, library, mails, space };

namespace screens {

struct PlaceTexts {
    QString key; // by which QML knows the place
    QString title;
    QString symbol;
};

// In the order of the sidebar and of the keys Ctrl 1 to Ctrl 5.
inline constexpr std::array allPlaces = {SidebarPlace::home, SidebarPlace::archived, SidebarPlace::library,
                                         SidebarPlace::mails, SidebarPlace::space};

PlaceTexts textsOf(SidebarPlace place);

} // namespace screens

} // namespace corvane
