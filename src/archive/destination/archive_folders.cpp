#include "archive/destination/archive_folders.h"

#include <cerrno>
#include <utility>
#include <vector>

#include <fcntl.h>

#include "archive/destination/archive_modes.h"
#include "platform/files/layers/layer_reading.h"
#include "text/collation.h"

namespace corvane::archive {

namespace {

using platform::FileIdentity;
using platform::FileLayer;
using platform::LayerDescriptor;

bool isIn(FileLayer& files, int folder, int parent) {
    struct stat around{};
    struct stat expected{};
    return files.statAt(folder, "..", around) == 0 && files.statOpen(parent, expected) == 0 &&
           FileIdentity::of(around) == FileIdentity::of(expected);
}

// A link is followed at most to a neighbour in the same folder, which the user may want, and nowhere else.
LayerDescriptor openSubfolder(FileLayer& files, int parent, const std::string& name,
                              ArchiveFolders::Links links = ArchiveFolders::Links::ofNeighbours) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NONBLOCK;
    LayerDescriptor folder(files, files.openAt(parent, name, flags | O_NOFOLLOW, 0));
    if (folder || (errno != ELOOP && errno != ENOTDIR) || links == ArchiveFolders::Links::none) return folder;
    folder = LayerDescriptor(files, files.openAt(parent, name, flags, 0));
    if (!folder || isIn(files, folder.get(), parent)) return folder;
    folder.reset();
    errno = ELOOP;
    return folder;
}

// Opens the folder, and makes it first where it isn't there.
LayerDescriptor makeSubfolder(FileLayer& files, int parent, const std::string& name, bool& isNew) {
    LayerDescriptor folder = openSubfolder(files, parent, name);
    isNew = false;
    if (folder || errno != ENOENT) return folder;
    isNew = files.makeDirectoryAt(parent, name, mostOfFolder) == 0;
    if (!isNew && errno != EEXIST) return folder;
    return openSubfolder(files, parent, name);
}

bool isSpelledSoIn(FileLayer& files, int folder, const std::string& name) {
    const auto names = composedNamesIn(files, folder);
    return names && names->contains(text::canonicallyComposed(name));
}

} // namespace

ArchiveFolders::ArchiveFolders(std::string rootPath, std::shared_ptr<const LayerDescriptor> root)
  : rootPath_(std::move(rootPath))
  , root_(std::move(root)) {}

int ArchiveFolders::rootError(FileLayer& files) const {
    struct stat named{};
    struct stat opened{};
    // A second look before a whole run ends for a moment's failure.
    for (int tries = 2; files.stat(rootPath_, named) != 0;) {
        if (platform::saysAbsent(errno)) return ENOENT;
        if (--tries == 0) return errno;
    }
    if (files.statOpen(root(), opened) != 0) return errno;
    return FileIdentity::of(named) == FileIdentity::of(opened) ? 0 : ENOENT;
}

LayerDescriptor ArchiveFolders::open(FileLayer& files, std::string_view relativeFolder, Links links) const {
    LayerDescriptor folder(files, files.openAt(root(), ".", O_RDONLY | O_DIRECTORY, 0));
    for (const std::string& name : componentsOf(relativeFolder)) {
        if (!folder) break;
        folder = openSubfolder(files, folder.get(), name, links);
    }
    return folder;
}

ArchiveFolders::Opened ArchiveFolders::make(FileLayer& files, const std::string& relativeFolder) {
    const auto earlier = known_.find(relativeFolder);
    LayerDescriptor folder(files, files.openAt(root(), ".", O_RDONLY | O_DIRECTORY, 0));
    Known known;
    for (const std::string& name : componentsOf(relativeFolder)) {
        if (!folder) break;
        bool isNew = false;
        LayerDescriptor next = makeSubfolder(files, folder.get(), name, isNew);
        const bool isToBeChecked = next && !isNew && earlier == known_.end();
        if (isToBeChecked && !isSpelledSoIn(files, folder.get(), name)) known.isSpelledSo = false;
        folder = std::move(next);
    }
    struct stat status{};
    if (!folder || files.statOpen(folder.get(), status) != 0) return {};
    known.identity = FileIdentity::of(status);
    if (earlier != known_.end() && earlier->second.identity == known.identity) {
        return {std::move(folder), &earlier->second};
    }
    if (earlier != known_.end()) {
        // Another folder has taken the place: nothing is known of it.
        known_.erase(earlier);
        return make(files, relativeFolder);
    }
    return {std::move(folder), &known_.insert_or_assign(relativeFolder, std::move(known)).first->second};
}

std::vector<std::string> componentsOf(std::string_view path) {
    std::vector<std::string> components;
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        const std::string_view name = path.substr(0, slash);
        if (name == "..") {
            if (!components.empty()) components.pop_back();
        } else if (!name.empty() && name != ".") {
            components.emplace_back(name);
        }
        path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
    }
    return components;
}

std::optional<std::unordered_set<std::string>> composedNamesIn(FileLayer& files, int folder) {
    std::unordered_set<std::string> names;
    const int result = files.list(
        folder, [&](std::string_view name, unsigned char) { names.insert(text::canonicallyComposed(name)); });
    if (result != 0) return std::nullopt;
    return names;
}

} // namespace corvane::archive
