// The window's fonts.
#pragma once

#include <QStringList>

namespace corvane {

// Takes back most of what Qt adds to the stems of PostScript fonts, such as the usual Chinese one: light text
// on dark looks a weight heavier with it. Before the QGuiApplication; says nothing to who has set
// FREETYPE_PROPERTIES.
void thinTextStems();

// Sets the application's font: the desktop's own, with a family of simplified Chinese behind it, so that the
// system's fallback doesn't pick Japanese forms. Needs the QGuiApplication.
void useWindowFonts();

// There is a font for Chinese on this system. Without one the window would show boxes.
bool hasChineseFont();

} // namespace corvane
