// What choosing a folder comes to when the settings are exported into it, or imported from it. Thread-safe;
// what looks at the disk blocks.
#pragma once

#include <stop_token>
#include <string_view>

#include "screens/archive/places/folder_choice.h"

namespace corvane {

// A new file in the folder, never the place of one that is there.
FolderChoice backupExportChoice(const FolderQuestion& question, const std::stop_token& stop);

// The newest backup in the folder, be it an exported one or the copy that an archive has.
FolderChoice backupImportChoice(const FolderQuestion& question, const std::stop_token& stop);

// Whether a file is called as backups are.
bool isBackupName(std::string_view name);

} // namespace corvane
