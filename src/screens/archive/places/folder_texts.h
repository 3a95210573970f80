// The folder picker's texts: names in the order in which people look for them, and why something about a
// folder failed. Pure functions, any thread.
#pragma once

#include <string>
#include <system_error>
#include <vector>

#include <QString>

namespace corvane::screens {

struct NamedFolder {
    std::string name; // of the folder, in bytes
    QString shown;
};

// By the shown names, numbers by their value; names that look the same keep one order.
std::vector<NamedFolder> sortedFolders(std::vector<std::string> names);

enum class FolderAction { open, make, write };

// Why the action failed; empty without an error.
QString folderErrorText(const std::error_code& error, FolderAction action);

} // namespace corvane::screens
