// Folders of the disk as the folder picker shows them. Everything here may block: never on the main thread.
// Paths are bytes and stay so; only names that are shown become text. No state.
#pragma once

#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include <QString>

namespace corvane {

struct ListedFolder {
    std::string path;
    QString name; // as shown

    friend bool operator==(const ListedFolder&, const ListedFolder&) = default;
};

struct FolderListing {
    std::string path;
    std::vector<ListedFolder> folders; // in the order of their names, numbers by their value
    QString error;                     // why it can't be listed; empty where it could
};

namespace screens {

// The folders in a folder, links to folders among them, hidden ones not.
FolderListing listFolders(const std::string& path, const std::stop_token& stop = {});

// The listing of the nearest folder on the way up that can be read; of `fallback` where there is none.
FolderListing listNearestFolder(const std::string& path, const std::string& fallback,
                                const std::stop_token& stop = {});

// What the user has typed as an absolute path: "~" is `home`, a relative path begins at `shown`. Text only.
std::string typedFolder(std::string_view text, const std::string& shown, const std::string& home);

// Makes a folder and lists it. The name comes from the user: it must be one path component.
FolderListing makeFolder(const std::string& parent, const std::string& name);

// Why an archive can't be written there; empty where it can.
QString obstacleToWriting(const std::string& path);

} // namespace screens

} // namespace corvane
