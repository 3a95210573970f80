#include "screens/texts/archive_place.h"

#include "platform/paths.h"
#include "screens/texts/shown_text.h"

namespace corvane::screens {

QString archivePlaceName(const LibraryLoader& library, std::string_view root) {
    const ArchiveLocation* location = library.location(root);
    return shownLine(location == nullptr ? platform::lastPathComponent(root) : location->displayName);
}

} // namespace corvane::screens
