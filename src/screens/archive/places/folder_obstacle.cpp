#include "screens/archive/places/folder_obstacle.h"

#include <system_error>

#include "locations/places/folder_listing.h"
#include "platform/files/writing/durable_file.h"
#include "screens/archive/places/folder_texts.h"

namespace corvane::screens {

QString archiveFolderObstacle(const std::string& path, bool makes, PlaceLooks& looks) {
    const auto obstacle = looks.ask<QString>(path, [path, makes](PlaceLook& look) {
        if (makes) {
            const std::error_code error = platform::createDirectories(look.files(), path);
            if (error) return folderErrorText(error, FolderAction::make);
        }
        return folderErrorText(writingObstacle(path), FolderAction::write);
    });
    return obstacle.value_or(
        folderErrorText(std::make_error_code(std::errc::timed_out), FolderAction::write));
}

} // namespace corvane::screens
