#include "archive/destination/destination_jobs.h"

#include <cerrno>
#include <exception>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include "archive/destination/archive_modes.h"
#include "archive/destination/durable_write.h"
#include "platform/files/file_identity.h"
#include "platform/files/layers/folder_file_layer.h"
#include "platform/files/layers/forwarding_file_layer.h"
#include "platform/files/writing/durable_file.h"
#include "platform/files/writing/leftovers.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"

namespace corvane::archive {

namespace {

using platform::FileLayer;
using platform::FolderFileLayer;
using platform::JobLimit;
using platform::LayerDescriptor;

std::string indexName() {
    return std::string(archiveIndexFileName);
}

// Empty, with errno, when it can't be moved.
std::string movedAside(FileLayer& folder, const std::string& stamp) {
    constexpr int mostTries = 100;
    struct stat status{};
    for (int number = 1; number <= mostTries; ++number) {
        const std::string tail = number == 1 ? "" : fmt::format("-{}", number);
        const std::string name = fmt::format(".archive-index-damaged-{}{}.json", stamp, tail);
        if (folder.stat(name, status) == 0) continue;
        return errno == ENOENT && folder.rename(indexName(), name) == 0 ? name : std::string();
    }
    errno = EEXIST;
    return {};
}

// Looks at the index again right before it is replaced.
class IndexGuard final : public platform::ForwardingFileLayer {
  public:
    IndexGuard(FileLayer& folder, const std::optional<ArchiveIndexStamp>& loaded, std::function<int()> before)
      : ForwardingFileLayer(folder)
      , loaded_(loaded)
      , before_(std::move(before)) {}

    int rename(const std::string& from, const std::string& to) override {
        if (!isLoaded(to)) return -1;
        if (before_) {
            errno = before_();
            if (errno != 0 || !isLoaded(to)) return -1;
        }
        return ForwardingFileLayer::rename(from, to);
    }

    [[nodiscard]] bool hasChanged() const noexcept { return hasChanged_; }

  private:
    // False, with errno, when it isn't, or nobody could look.
    bool isLoaded(const std::string& path) {
        struct stat status{};
        std::optional<ArchiveIndexStamp> present;
        if (stat(path, status) == 0) {
            present = ArchiveIndexStamp::of(status);
        } else if (errno != ENOENT) {
            return false;
        }
        hasChanged_ = present != loaded_;
        if (hasChanged_) errno = EEXIST;
        return !hasChanged_;
    }

    const std::optional<ArchiveIndexStamp>& loaded_;
    std::function<int()> before_;
    bool hasChanged_ = false;
};

enum class FolderSync {
    stored,
    notStored, // a device tells this once: asked again, it may say that all is well
    notSeen,   // isn't there any more, or nobody could look
};

FolderSync syncWritten(FileLayer& files, const ArchiveFolders& folders, const WrittenFolder& folder) {
    const auto descriptor = folders.open(files, folder.relativePath);
    struct stat status{};
    if (!descriptor || files.statOpen(descriptor.get(), status) != 0) return FolderSync::notSeen;
    if (platform::FileIdentity::of(status) != folder.identity) return FolderSync::notSeen;
    return syncDirectory(files, descriptor.get()) == EIO ? FolderSync::notStored : FolderSync::stored;
}

} // namespace

void RootMaking::run(FileLayer& files) {
    struct stat status{};
    std::string folder = root;
    do {
        folder = platform::parentPath(folder);
        if (folder.empty()) break;
        foldersAbove.insert(folder);
    } while (files.stat(folder, status) != 0);
    error = platform::createDirectories(files, root).value();
}

void RootLocking::run(FileLayer& files, FileLayer& owner) {
    constexpr int flags = O_RDONLY | O_DIRECTORY;
    lock = std::make_shared<LayerDescriptor>(owner, files.open(root, flags, 0));
    if (!*lock) {
        error = errno;
        return;
    }
    isTaken = files.lock(lock->get()) != 0 && errno == EWOULDBLOCK;
    if (isTaken) return;
    opened = std::make_shared<LayerDescriptor>(owner, files.openAt(lock->get(), ".", flags, 0));
    struct stat status{};
    if (!*opened || files.statOpen(opened->get(), status) != 0) {
        error = errno;
        return;
    }
    mode = status.st_mode;
    platform::removeUnfinishedFiles(root);
}

void IndexKeeping::run(FileLayer& files) {
    FolderFileLayer folder(files, folders->root());
    name = movedAside(folder, stamp);
    error = name.empty() ? errno : 0;
    if (error == 0) syncDirectory(files, folders->root());
}

void FilePlacing::run(FileLayer& files, JobLimit& limit) {
    try {
        if (const int rootError = folders->rootError(files)) {
            hasRootGone = rootError == ENOENT;
            throw ArchiveError(ArchiveError::Case::writeFailed, rootError);
        }
        placed = FilePlacement(files, *folders, limit, relativePath, message.bytes).place();
        if (asksForCache) staysInCache = archive::staysInCache(files, folders->root(), relativePath);
    } catch (const ArchiveError& failure) {
        error = failure;
    } catch (const std::exception& failure) {
        consoleLine(fmt::format("[archive] {}: {}", relativePath, failure.what()));
        error = ArchiveError(ArchiveError::Case::writeFailed);
    }
}

void FolderSyncing::run(FileLayer& files, JobLimit& limit) {
    error = folders->rootError(files);
    if (error != 0) return;
    std::set<std::string> above{""};
    for (const WrittenFolder& folder : touched) {
        limit.restart();
        FolderSync outcome = syncWritten(files, *folders, folder);
        // A second look before the mails of a whole folder fail for a moment's failure.
        if (outcome == FolderSync::notSeen) outcome = syncWritten(files, *folders, folder);
        if (outcome != FolderSync::stored) lost.insert(folder);
        for (std::string_view path = folder.relativePath; !path.empty();) {
            path = platform::parentPath(path);
            above.emplace(path);
        }
    }
    for (const std::string& path : above) {
        limit.restart();
        const auto descriptor = folders->open(files, path);
        if (descriptor) syncDirectory(files, descriptor.get());
    }
}

void IndexReplacing::run(FileLayer& files, JobLimit& limit) {
    error = folders->rootError(files);
    if (error != 0) return;
    FolderFileLayer folder(files, folders->root());
    std::function<int()> beforeRename;
    if (before) beforeRename = [&] { return before(files, *folders, limit); };
    IndexGuard guard(folder, loaded, std::move(beforeRename));
    error = platform::writeFileAtomically(guard, indexName(), content, mostOfFile).value();
    hasChanged = guard.hasChanged();
    if (error != 0 || limit.isAbandoned()) return;
    if (markHidden) markHidden(indexPath);
    syncDirectories(folder, {indexName()});
}

} // namespace corvane::archive
