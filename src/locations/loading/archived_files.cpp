#include "locations/loading/archived_files.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include "locations/places/place_looks.h"
#include "platform/files/cloud_placeholder.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "text/collation.h"

namespace corvane {

namespace {

using Paths = std::vector<const SharedText*>;

// No file can have a name that is too long; the placeholder's is longer than the file's.
bool saysAbsent(int error) {
    return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG;
}

bool isGone(platform::FileLayer& files, const ArchivedEmailRecord& record, const std::string& root) {
    if (!platform::isSafeRelativePath(record.emlRelativePath)) return true;
    return isArchiveFileGone(files, platform::joinPath(root, record.emlRelativePath));
}

// The files of one archive, folder by folder: a disk, and a network disk most of all, answers questions for
// the files of a folder that it has just listed at once.
class Listing {
  public:
    Listing(PlaceLook& look, const std::string& root)
      : look_(look)
      , root_(root) {}

    void addFolder(const std::string& folder, const Paths& paths);

    RootFiles result;

  private:
    // Composed names of what stands for a file and is none.
    struct Names {
        SharedTextSet inCloud;
        SharedTextSet links;
    };

    // Whether the folder lies below the root with all links resolved, as everything that reads an archive
    // demands; nullopt when nobody can look.
    std::optional<bool> isHeld(const std::string& folder);
    bool listNames(const std::string& folder, Names& names);
    void addFile(const SharedText& path, const Names& names);

    PlaceLook& look_;
    const std::string& root_;
    std::optional<std::string> resolvedRoot_;
};

void Listing::addFolder(const std::string& folder, const Paths& paths) {
    const std::string path = platform::joinPath(root_, folder);
    look_.beginStep();
    const FilePresence presence = filePresence(look_.files(), path);
    if (presence == FilePresence::absent) return;
    const auto held = presence == FilePresence::present ? isHeld(path) : std::nullopt;
    if (held == false) return; // what lies behind a link out of the archive isn't in it
    Names names;
    const bool wasListed = held && listNames(path, names);
    for (const SharedText* file : paths) {
        if (wasListed)
            addFile(*file, names);
        else
            result.unknown.insert(*file);
    }
}

std::optional<bool> Listing::isHeld(const std::string& folder) {
    if (!resolvedRoot_) resolvedRoot_ = platform::resolvedPath(root_);
    const auto resolved = platform::resolvedPath(folder);
    if (!resolvedRoot_ || !resolved) return std::nullopt;
    return platform::isAtOrBelow(*resolved, *resolvedRoot_);
}

bool Listing::listNames(const std::string& folder, Names& names) {
    platform::FileLayer& files = look_.files();
    const int descriptor = files.open(folder, O_RDONLY | O_DIRECTORY, 0);
    if (descriptor < 0) return false;
    const int listed = files.list(descriptor, [&](std::string_view entry, unsigned char type) {
        if (type == DT_LNK)
            names.links.insert(SharedText(text::canonicallyComposed(entry)));
        else if (const auto name = platform::nameBehindPlaceholder(entry))
            names.inCloud.insert(SharedText(text::canonicallyComposed(*name)));
    });
    files.close(descriptor);
    return listed == 0;
}

void Listing::addFile(const SharedText& path, const Names& names) {
    look_.beginStep();
    const auto isAmong = [&](const SharedTextSet& some) {
        return !some.empty() && some.contains(text::canonicallyComposed(platform::lastPathComponent(path)));
    };
    if (isAmong(names.links)) return;
    struct stat status{};
    const std::string file = platform::joinPath(root_, path);
    if (look_.files().stat(file, status) == 0) {
        if (S_ISREG(status.st_mode)) result.there[path] = stampOf(status);
    } else if (!saysAbsent(errno)) {
        result.unknown.insert(path);
    } else if (isAmong(names.inCloud)) {
        result.inCloud.insert(path);
    }
}

} // namespace

FilePresence filePresence(platform::FileLayer& files, const std::string& path) {
    struct stat status{};
    if (files.stat(path, status) == 0) return FilePresence::present;
    return saysAbsent(errno) ? FilePresence::absent : FilePresence::unknown;
}

ArchivedFilePresence RootFiles::presence(std::string_view relativePath) const {
    using enum ArchivedFilePresence;
    if (this->there.contains(relativePath)) return ArchivedFilePresence::there;
    if (this->inCloud.contains(relativePath)) return ArchivedFilePresence::inCloud;
    return this->unknown.contains(relativePath) ? ArchivedFilePresence::unknown : gone;
}

ArchivedFilePresence ArchivedFiles::presence(std::string_view root, std::string_view relativePath) const {
    const auto files = byRoot.find(root);
    return files == byRoot.end() ? ArchivedFilePresence::unknown : files->second->presence(relativePath);
}

const FileStamp* ArchivedFiles::stamp(std::string_view root, std::string_view relativePath) const {
    const auto files = byRoot.find(root);
    if (files == byRoot.end()) return nullptr;
    const auto found = files->second->there.find(relativePath);
    return found == files->second->there.end() ? nullptr : &found->second;
}

bool isArchiveFileGone(platform::FileLayer& files, const std::string& path) {
    return filePresence(files, path) == FilePresence::absent &&
           filePresence(files, platform::cloudPlaceholderPath(path)) == FilePresence::absent;
}

RootFiles listArchivedFiles(PlaceLook& look, const std::vector<SharedText>& paths, const std::string& root) {
    std::map<std::string_view, Paths> folders;
    for (const SharedText& path : paths) {
        if (platform::isSafeRelativePath(path)) folders[platform::parentPath(path)].push_back(&path);
    }
    Listing listing(look, root);
    for (const auto& [folder, files] : folders) listing.addFolder(std::string(folder), files);
    return std::move(listing.result);
}

bool hasFilesInCloud(const ArchivedFiles& files) {
    return std::ranges::any_of(files.byRoot, [](const auto& root) { return !root.second->inCloud.empty(); });
}

bool allArchivedEmlGone(const RootFiles& files, const EmailArchiveIndex& index) {
    return !index.records.empty() && files.areAllGone();
}

bool archiveLocationContentMissing(platform::FileLayer& files, const std::vector<ArchivedEntry>& entries,
                                   const std::string& rootPath) {
    if (filePresence(files, rootPath) != FilePresence::present) return false;
    bool hasEntries = false;
    for (const ArchivedEntry& entry : entries) {
        if (entry.locationRootPath != rootPath) continue;
        if (!isGone(files, entry.record, rootPath)) return false;
        hasEntries = true;
    }
    return hasEntries;
}

SharedArchivedFiles publishedFiles(ArchivedFiles files, const SharedArchivedFiles& earlier) {
    const auto saysTheSame = [](const auto& a, const auto& b) {
        return a.first == b.first && *a.second == *b.second;
    };
    if (earlier && std::ranges::equal(files.byRoot, earlier->byRoot, saysTheSame)) return earlier;
    return std::make_shared<const ArchivedFiles>(std::move(files));
}

} // namespace corvane
