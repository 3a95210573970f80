#include "screens/texts/window_places.h"

#include <cstddef>

namespace corvane::screens {

namespace {

struct Place {
    const char16_t* key;
    const char16_t* title;
    const char16_t* symbol;
};

// By SidebarPlace.
constexpr std::array<Place, allPlaces.size()> places = {{
    {u"home", u"归档邮件", u"archive"},
    {u"archived", u"已归档概览", u"shield-check"},
    {u"library", u"归档库", u"library"},
    {u"mails", u"邮件列表", u"mails"},
    {u"space", u"Mail 空间", u"chart-pie"},
}};

const Place& entryOf(SidebarPlace place) {
    return places.at(static_cast<std::size_t>(place));
}

} // namespace

PlaceTexts textsOf(SidebarPlace place) {
    const Place& entry = entryOf(place);
    return {QString::fromUtf16(entry.key), QString::fromUtf16(entry.title), QString::fromUtf16(entry.symbol)};
}

} // namespace corvane::screens
