#include "screens/texts/archive_place.h"

#include "locations/place_names.h"
#include "screens/texts/shown_text.h"

namespace corvane::screens {

QString archivePlaceName(const LibraryLoader& library, std::string_view root) {
    return shownLine(listedLocationName(library.location(root), root));
}

} // namespace corvane::screens
