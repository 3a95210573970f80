// What an archive is called on the screens. Main thread.
#pragma once

#include <string_view>

#include <QString>

#include "model/library/library_loader.h"

namespace corvane::screens {

// As the library lists it ("坚果云 · 邮件归档"); of one that isn't listed the name of its folder.
QString archivePlaceName(const LibraryLoader& library, std::string_view root);

} // namespace corvane::screens
