// The window's fonts.
#pragma once

#include <QStringList>

namespace corvane {

// Sets the application's font: the desktop's own, with a family of simplified Chinese behind it, so that the
// system's fallback doesn't pick Japanese forms. Needs the QGuiApplication.
void useWindowFonts();

// There is a font for Chinese on this system. Without one the window would show boxes.
bool hasChineseFont();

} // namespace corvane
