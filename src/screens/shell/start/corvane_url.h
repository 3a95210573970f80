// The addresses of the program itself: corvane://open?path=FOLDER opens that folder.
#pragma once

#include <optional>

#include <QString>

namespace corvane {

// The absolute path that the address asks to open; absent for any other address. Text only: whether there is
// such a folder isn't looked at.
std::optional<QString> folderOfUrl(const QString& address);

} // namespace corvane
