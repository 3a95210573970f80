#include "archive/destination/archive_destination.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <exception>
#include <thread>
#include <utility>

#include <fmt/format.h>

#include "archive/archive_error.h"
#include "archive/destination/archive_modes.h"
#include "archive/destination/destination_jobs.h"
#include "archive/destination/durable_write.h"
#include "archive/destination/index_records.h"
#include "platform/files/layers/folder_file_layer.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_decoder.h"
#include "records/logs/console_log.h"
#include "records/timestamps.h"

namespace corvane::archive {

namespace {

using platform::FileLayer;
using platform::FolderFileLayer;
using platform::JobLimit;
using platform::LayerDescriptor;
using State = ArchiveIndexReading::State;

// Without the index nothing of the run counts, so it gets more time after a stop than one message.
constexpr std::chrono::nanoseconds indexGraceAfterStop = std::chrono::seconds(5);
constexpr int mostIndexTries = 5;
constexpr auto lookAgainAfter = std::chrono::milliseconds(200);

// A large file on a slow stick takes its time: one second more for each MiB.
std::chrono::nanoseconds limitForSize(std::chrono::nanoseconds limit, std::size_t bytes) {
    return limit + std::chrono::seconds(bytes >> 20);
}

} // namespace

ArchiveDestination::ArchiveDestination(FileLayer& files, std::string root, std::chrono::nanoseconds limit,
                                       std::stop_token stop)
  : files_(files)
  , rootPath_(std::move(root))
  , indexPath_(platform::joinPath(rootPath_, archiveIndexFileName))
  , limit_(limit)
  , stop_(std::move(stop)) {}

// In a job of its own: on a dead network disk giving up the lock can hang as well.
ArchiveDestination::~ArchiveDestination() {
    folders_.reset();
    if (!lock_) return;
    const auto limit = hungAfterStop_ > 0 ? std::chrono::nanoseconds::zero() : limit_;
    worker_.run(limit, [lock = std::exchange(lock_, nullptr),
                        opened = std::exchange(opened_, nullptr)](JobLimit&) mutable {
        lock.reset();
        opened.reset();
    });
}

// False when the job hung, or wasn't begun because others have, and the user wants an end. What the job
// throws passes on.
bool ArchiveDestination::runLimited(std::chrono::nanoseconds limit,
                                    std::function<void(FileLayer&, JobLimit&)> job,
                                    std::chrono::nanoseconds grace) {
    if (hungAfterStop_ > 1) return false;
    const auto failure = std::make_shared<std::exception_ptr>();
    const bool hasEnded = worker_.run(
        limit,
        [&files = files_, mode = rootMode_, failure, job = std::move(job)](JobLimit& jobLimit) {
            platform::AbandonableFileLayer layer(files, jobLimit);
            ArchiveModes modes(layer, mode);
            try {
                job(modes, jobLimit);
            } catch (...) {
                *failure = std::current_exception();
            }
        },
        stop_, grace);
    if (hasEnded && *failure) std::rethrow_exception(*failure);
    if (hasEnded) return true;
    folders_.reset();
    if (stop_.stop_requested()) ++hungAfterStop_;
    return false;
}

std::shared_ptr<ArchiveFolders> ArchiveDestination::folders() {
    if (!folders_) folders_ = std::make_shared<ArchiveFolders>(rootPath_, opened_);
    return folders_;
}

void ArchiveDestination::createRoot() {
    const auto making = std::make_shared<RootMaking>(rootPath_);
    const bool hasEnded = runLimited(limit_, [making](FileLayer& files, JobLimit&) { making->run(files); });
    const int error = hasEnded ? making->error : ETIMEDOUT;
    if (error != 0) throw ArchiveAccessError("无法创建归档文件夹", rootPath_, error);
    foldersAbove_ = making->foldersAbove;
}

// On the folder itself, so that no file is left in it. The system takes the lock back with the process.
void ArchiveDestination::lock() {
    const auto locking = std::make_shared<RootLocking>(rootPath_);
    const bool hasEnded = runLimited(
        limit_, [locking, &owner = files_](FileLayer& files, JobLimit&) { locking->run(files, owner); });
    if (hasEnded && locking->isTaken) {
        throw ArchiveAccessError("无法使用归档文件夹", rootPath_,
                                 "另一个 Corvane 正在向这里归档，请等它完成后再试");
    }
    const int error = hasEnded ? locking->error : ETIMEDOUT;
    if (error != 0) throw ArchiveAccessError("无法使用归档文件夹", rootPath_, error);
    rootMode_ = locking->mode;
    lock_ = locking->lock;
    opened_ = locking->opened;
}

ArchiveIndexReading ArchiveDestination::readIndex() {
    const auto reading = std::make_shared<ArchiveIndexReading>();
    const bool hasEnded =
        runLimited(limit_, [reading, folders = folders()](FileLayer& files, JobLimit& limit) {
            FolderFileLayer folder(files, folders->root());
            *reading =
                readArchiveIndexFile(folder, std::string(archiveIndexFileName), [&] { limit.restart(); });
        });
    if (hasEnded) return std::move(*reading);
    return {.state = State::couldNotLook, .index = {}, .stamp = {}, .error = ETIMEDOUT};
}

ArchiveIndexReading ArchiveDestination::broughtIndex(const std::function<bool(const std::string&)>& bring) {
    ArchiveIndexReading reading = readIndex();
    if (!reading.isInCloud || !bring || !bring(indexPath_)) return reading;
    const auto end = std::chrono::steady_clock::now() + limit_;
    while (reading.isInCloud && std::chrono::steady_clock::now() < end && !stop_.stop_requested()) {
        std::this_thread::sleep_for(lookAgainAfter);
        reading = readIndex();
    }
    return reading;
}

LoadedIndex ArchiveDestination::loadIndex(Date now, const std::function<bool(const std::string&)>& bring) {
    ArchiveIndexReading reading = broughtIndex(bring);
    if (reading.state == State::couldNotLook) {
        throw ArchiveAccessError(indexNotRead, indexPath_, fileErrorReason(reading.isInCloud, reading.error));
    }
    loadedStamp_ = reading.stamp;
    if (reading.state == State::usable) return {.index = std::move(reading.index), .damagedKeptAs = {}};
    LoadedIndex loaded{.index = {.createdAt = now, .updatedAt = now, .records = {}}, .damagedKeptAs = {}};
    if (reading.state == State::damaged) loaded.damagedKeptAs = keepDamagedIndex(now);
    return loaded;
}

EmailArchiveIndex ArchiveDestination::existingIndex() {
    ArchiveIndexReading reading = readIndex();
    loadedStamp_ = reading.stamp;
    switch (reading.state) {
    case State::couldNotLook:
        throw ArchiveAccessError(indexNotRead, indexPath_, fileErrorReason(reading.isInCloud, reading.error));
    case State::damaged:
        throw ArchiveAccessError(indexNotRead, indexPath_, "内容已损坏");
    case State::absent:
        throw ArchiveAccessError(indexNotRead, indexPath_, "没有这个文件");
    case State::usable:
        break;
    }
    return std::move(reading.index);
}

std::string ArchiveDestination::keepDamagedIndex(Date now) {
    std::string stamp = formatTimestamp(now);
    std::erase_if(stamp, [](char character) { return character == '-' || character == ':'; });
    const auto keeping = std::make_shared<IndexKeeping>(folders(), std::move(stamp));
    const bool hasEnded = runLimited(limit_, [keeping](FileLayer& files, JobLimit&) { keeping->run(files); });
    const int error = hasEnded ? keeping->error : ETIMEDOUT;
    if (error != 0) throw ArchiveAccessError("归档索引已损坏，且无法另存", indexPath_, error);
    loadedStamp_.reset();
    return keeping->name;
}

ArchivedFile ArchiveDestination::readArchived(const std::string& relativePath, std::int64_t sizeBytes) {
    const auto file = std::make_shared<ArchivedFile>();
    const bool hasEnded = runLimited(
        limit_, [file, folders = folders(), relativePath, sizeBytes](FileLayer& files, JobLimit& limit) {
            *file = readArchivedFile(files, *folders, limit, relativePath, sizeBytes);
        });
    if (!hasEnded) return {};
    if (file->state == ArchivedFile::State::read) touchedFolders_.insert(file->folder);
    return std::move(*file);
}

PlacedFile ArchiveDestination::writePOSIX(const MessageBytes& message, const std::string& relativePath) {
    const auto placing = std::make_shared<FilePlacing>(folders(), message, relativePath, !hasAskedForCache_);
    const bool hasEnded = runLimited(
        limit_, [placing](FileLayer& files, JobLimit& limit) { placing->run(files, limit); },
        limitForSize(graceAfterStop, message.bytes.size()));
    if (!hasEnded) throw ArchiveError(ArchiveError::Case::writeTimedOut);
    if (placing->hasRootGone) failUnsaved(ENOENT);
    if (placing->error) throw ArchiveError(*placing->error);
    if (placing->placed.outcome != PlacedFile::Outcome::nameTaken) {
        touchedFolders_.insert(placing->placed.folder);
        hasAskedForCache_ = true;
    }
    if (placing->staysInCache)
        consoleLine(fmt::format("[archive] {}: 此文件系统只从内存读回，写入后的核对无法越过缓存", rootPath_));
    return placing->placed;
}

std::set<WrittenFolder> ArchiveDestination::syncFolders() {
    const auto syncing = std::make_shared<FolderSyncing>(folders(), touchedFolders_);
    const bool hasEnded = runLimited(
        limit_, [syncing](FileLayer& files, JobLimit& limit) { syncing->run(files, limit); },
        indexGraceAfterStop);
    if (!hasEnded) failUnsaved(ETIMEDOUT);
    if (syncing->error != 0) failUnsaved(syncing->error);
    return syncing->lost;
}

void ArchiveDestination::saveIndex(EmailArchiveIndex& index,
                                   const std::function<void(const std::string&)>& markHidden) {
    for (int tries = 0; tries < mostIndexTries; ++tries) {
        if (replaceIndex(index, markHidden, {})) return;
        mergeChangedIndex(index);
    }
    throw ArchiveAccessError(indexNotSaved, indexPath_, "别的程序在不断改动它");
}

bool ArchiveDestination::replaceIndex(const EmailArchiveIndex& index,
                                      const std::function<void(const std::string&)>& markHidden,
                                      BeforeReplacing before) {
    const auto replacing = std::make_shared<IndexReplacing>(folders(), indexPath_, encodeArchiveIndex(index),
                                                            loadedStamp_, markHidden, std::move(before));
    const std::size_t bytes = replacing->content.size();
    if (std::cmp_greater(bytes, largestArchiveIndexBytes)) failUnsaved(EFBIG);
    const bool hasEnded = runLimited(
        limitForSize(limit_, bytes),
        [replacing](FileLayer& files, JobLimit& limit) { replacing->run(files, limit); },
        limitForSize(indexGraceAfterStop, bytes));
    if (!hasEnded) failUnsaved(ETIMEDOUT);
    if (replacing->hasChanged || replacing->error == ECANCELED) return false;
    if (replacing->error != 0) failUnsaved(replacing->error);
    return true;
}

void ArchiveDestination::mergeChangedIndex(EmailArchiveIndex& index) {
    ArchiveIndexReading reading = readIndex();
    if (reading.state == State::couldNotLook) {
        throw ArchiveAccessError(indexNotSaved, indexPath_,
                                 fmt::format("它刚被别的程序改动，现在无法读取：{}",
                                             fileErrorReason(reading.isInCloud, reading.error)));
    }
    if (reading.state == State::damaged) {
        throw ArchiveAccessError(indexNotSaved, indexPath_, "它刚被别的程序改动，内容已损坏");
    }
    consoleLine(fmt::format("[archive] {}: 归档过程中被别的程序改动，合并两边的记录", indexPath_));
    loadedStamp_ = reading.stamp;
    if (reading.state == State::usable) index = mergedIndexes(index, std::move(reading.index));
}

void ArchiveDestination::failUnsaved(int error) const {
    throw ArchiveAccessError(indexNotSaved, indexPath_, error);
}

void ArchiveDestination::syncRoot() {
    const auto above = foldersAbove_;
    runLimited(limit_, [above, folders = folders()](FileLayer& files, JobLimit& limit) {
        syncDirectory(files, folders->root());
        syncDirectories(files, above, [&] { limit.restart(); });
    });
}

} // namespace corvane::archive
