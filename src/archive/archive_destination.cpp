#include "archive/archive_destination.h"

#include <cerrno>
#include <exception>
#include <optional>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>

#include "archive/archive_error.h"
#include "archive/durable_write.h"
#include "platform/files/durable_file.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"
#include "records/stores/archive_index_file.h"

namespace corvane::archive {

namespace {

// A large index on a slow stick takes its time: one second more for each MiB.
std::chrono::nanoseconds limitForSize(std::chrono::nanoseconds limit, std::size_t bytes) {
    return limit + std::chrono::seconds(bytes >> 20);
}

struct Placing {
    std::shared_ptr<ArchiveFolders> folders;
    MessageBytes message;
    std::string relativePath;
    PlacedFile placed;
    std::optional<ArchiveError::Case> error;

    void run(platform::FileLayer& files, JobLimit& limit) {
        try {
            placed = FilePlacement(files, *folders, limit, relativePath, message.bytes).place();
        } catch (const ArchiveError& failure) {
            error = failure.kind();
        } catch (const std::exception& failure) {
            consoleLine(fmt::format("[archive] {}: {}", relativePath, failure.what()));
            error = ArchiveError::Case::writeFailed;
        }
    }
};

} // namespace

ArchiveDestination::ArchiveDestination(platform::FileLayer& files, std::string root,
                                       std::chrono::nanoseconds limit)
  : files_(files)
  , root_(std::move(root))
  , indexPath_(platform::joinPath(root_, archiveIndexFileName))
  , limit_(limit) {}

// In a job of its own: on a dead network disk giving up the lock can hang as well.
ArchiveDestination::~ArchiveDestination() {
    if (!lock_) return;
    runLimited(limit_, [lock = std::exchange(lock_, nullptr)](auto&, JobLimit&) { lock->reset(); });
}

// False when the job hung.
bool ArchiveDestination::runLimited(std::chrono::nanoseconds limit,
                                    std::function<void(platform::FileLayer&, JobLimit&)> job) {
    return worker_.run(limit, [&files = files_, job = std::move(job)](JobLimit& jobLimit) {
        AbandonableFileLayer layer(files, jobLimit);
        job(layer, jobLimit);
    });
}

void ArchiveDestination::createRoot() {
    const auto error = std::make_shared<std::error_code>();
    const bool hasEnded = runLimited(limit_, [error, root = root_](platform::FileLayer& files, JobLimit&) {
        *error = platform::createDirectories(files, root);
    });
    const int number = hasEnded ? error->value() : ETIMEDOUT;
    if (number != 0) throw ArchiveAccessError("无法创建归档文件夹", root_, number);
}

// On the folder itself, so that no file is left in it. The system takes the lock back with the process.
void ArchiveDestination::lock() {
    struct Attempt {
        std::shared_ptr<platform::FileDescriptor> folder = std::make_shared<platform::FileDescriptor>();
        bool isTaken = false;
    };

    const auto attempt = std::make_shared<Attempt>();
    const bool hasEnded = runLimited(limit_, [attempt, root = root_](platform::FileLayer& files, JobLimit&) {
        attempt->folder->reset(files.open(root, O_RDONLY | O_DIRECTORY, 0));
        if (!*attempt->folder) return;
        attempt->isTaken = ::flock(attempt->folder->get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    });
    if (!hasEnded) throw ArchiveAccessError("无法使用归档文件夹", root_, ETIMEDOUT);
    if (attempt->isTaken) {
        throw ArchiveAccessError("无法使用归档文件夹", root_,
                                 "另一个 Corvane 正在向这里归档，请等它完成后再试");
    }
    lock_ = attempt->folder;
}

PlacedFile ArchiveDestination::writePOSIX(const MessageBytes& message, const std::string& relativePath) {
    if (!folders_) folders_ = std::make_shared<ArchiveFolders>(ArchiveRoot(root_));
    const auto placing = std::make_shared<Placing>(folders_, message, relativePath);
    const bool hasEnded = runLimited(
        limit_, [placing](platform::FileLayer& files, JobLimit& limit) { placing->run(files, limit); });
    if (!hasEnded) {
        folders_.reset();
        throw ArchiveError(ArchiveError::Case::writeTimedOut);
    }
    if (placing->error) throw ArchiveError(*placing->error);
    const std::string account(platform::parentPath(relativePath));
    touchedFolders_.insert(platform::joinPath(root_, account));
    touchedFolders_.insert(platform::joinPath(root_, platform::parentPath(account)));
    return placing->placed;
}

void ArchiveDestination::syncFolders() {
    sync(touchedFolders_);
}

void ArchiveDestination::saveIndex(std::string content, const std::string& keepOldAs,
                                   const std::function<void(const std::string&)>& markHidden) {
    const auto error = std::make_shared<std::error_code>();
    const auto limit = limitForSize(limit_, content.size());
    const bool hasEnded = runLimited(limit, [=, path = indexPath_, content = std::move(content)](
                                                platform::FileLayer& files, JobLimit& jobLimit) {
        if (!keepOldAs.empty()) {
            files.rename(path, platform::joinPath(platform::parentPath(path), keepOldAs));
        }
        *error = platform::writeFileAtomically(files, path, content);
        if (*error || jobLimit.isAbandoned()) return;
        if (markHidden) markHidden(path);
        syncDirectories(files, {path});
    });
    const int number = hasEnded ? error->value() : ETIMEDOUT;
    if (number != 0) throw ArchiveAccessError("无法保存归档索引", indexPath_, number);
}

void ArchiveDestination::syncRoot() {
    sync({root_, std::string(platform::parentPath(root_))});
}

void ArchiveDestination::sync(std::set<std::string> paths) {
    runLimited(limit_, [paths = std::move(paths)](platform::FileLayer& files, JobLimit& limit) {
        syncDirectories(files, paths, [&] { limit.restart(); });
    });
}

} // namespace corvane::archive
