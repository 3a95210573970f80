#include "archive/removal/archive_removal.h"

#include <cerrno>
#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <unordered_map>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "archive/archive_error.h"
#include "archive/destination/archive_destination.h"
#include "archive/destination/durable_write.h"
#include "archive/removal/file_removal.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"
#include "records/archived/archive_records.h"
#include "records/timestamps.h"
#include "text/shared_text.h"

namespace corvane {

namespace {

using archive::ArchiveDestination;
using archive::ArchiveFolders;
using archive::FileRemoval;
using platform::FileLayer;
using platform::JobLimit;
using platform::LayerDescriptor;
using Outcome = FileRemoval::Outcome;

constexpr int mostTries = 5;

// A record that is to go, with what has become of its file.
struct Target {
    RecordToRemove record;
    std::vector<std::string> others{}; // paths of records that stay, which could name the same file
    FileRemoval file{};
    std::string refusal{}; // why the record itself stays
};

// Whether the index can be replaced by another file, as far as that can be told beforehand. 0 or an errno.
int replacementError(FileLayer& files, int root) {
    const std::string name(archiveIndexFileName);
    const LayerDescriptor index(files, files.openAt(root, name, O_WRONLY | O_NOFOLLOW | O_NONBLOCK, 0));
    if (!index && (errno == EPERM || errno == EROFS)) return errno; // it is locked against every change
    struct stat folder{};
    struct stat file{};
    if (files.statOpen(root, folder) != 0 || files.statAt(root, name, file) != 0) return errno;
    const uid_t user = geteuid();
    const bool isOthers =
        (folder.st_mode & S_ISVTX) != 0 && user != 0 && file.st_uid != user && folder.st_uid != user;
    return isOthers ? EPERM : 0;
}

// The files of one removal. Owned by whoever wants them removed and by the job that does it.
struct FilesToRemove {
    std::vector<Target> targets;
    std::stop_token stop;
    std::shared_ptr<std::atomic<std::size_t>> triedFiles; // may be null

    int run(FileLayer& files, const ArchiveFolders& folders, JobLimit& limit);
    void syncFolders(FileLayer& files, const ArchiveFolders& folders, JobLimit& limit) const;
};

// ECANCELED when the record of a file that stays would be lost.
int FilesToRemove::run(FileLayer& files, const ArchiveFolders& folders, JobLimit& limit) {
    if (const int error = replacementError(files, folders.root())) return error;
    bool isComplete = true;
    for (Target& target : targets) {
        if (target.file.outcome != Outcome::notTried || !target.refusal.empty()) continue;
        limit.restart();
        if (limit.isAbandoned()) return ECANCELED;
        if (stop.stop_requested())
            target.file = {Outcome::failed, ECANCELED};
        else
            target.file = removeArchivedFile(files, folders, target.record.emlRelativePath, target.others);
        if (triedFiles) triedFiles->fetch_add(1);
        isComplete = isComplete && target.file.isSettled();
    }
    syncFolders(files, folders, limit);
    return isComplete ? 0 : ECANCELED;
}

// So that no index outlives a power loss to which a file comes back.
void FilesToRemove::syncFolders(FileLayer& files, const ArchiveFolders& folders, JobLimit& limit) const {
    std::set<std::string> touched;
    for (const Target& target : targets) {
        if (target.file.outcome == Outcome::removed)
            touched.emplace(platform::parentPath(target.record.emlRelativePath));
    }
    for (const std::string& path : touched) {
        limit.restart();
        const auto folder = folders.open(files, path, ArchiveFolders::Links::none);
        if (folder) archive::syncDirectory(files, folder.get());
    }
}

std::string reasonOf(const FileRemoval& file) {
    if (!file.isInCloud && file.error == ECANCELED) return "已中断";
    return fileErrorReason(file.isInCloud, file.error);
}

class Removal {
  public:
    Removal(FileLayer& files, const std::string& root, const std::vector<RecordToRemove>& records,
            const ArchiveRemovalOptions& options, const std::stop_token& stop)
      : options_(options)
      , work_(std::make_shared<FilesToRemove>())
      , destination_(files, root, options.timeLimit, stop) {
        work_->stop = stop;
        work_->triedFiles = options.triedFiles;
        SharedTextSet seen;
        for (const RecordToRemove& record : records)
            if (seen.insert(SharedText(record.id)).second) work_->targets.push_back({.record = record});
    }

    ArchiveRemoval run() {
        destination_.lock();
        for (int tries = 0; tries < mostTries; ++tries) {
            EmailArchiveIndex index = destination_.existingIndex();
            if (!dropRecords(index)) return result(index);
            index.updatedAt = currentTimestamp();
            const auto before = [work = work_](FileLayer& files, const ArchiveFolders& folders,
                                               JobLimit& limit) { return work->run(files, folders, limit); };
            if (destination_.replaceIndex(index, options_.markHidden, before)) return result(index);
        }
        throw ArchiveAccessError(indexNotSaved, destination_.indexPath(), "别的程序在不断改动它");
    }

  private:
    bool dropRecords(EmailArchiveIndex& index);
    void findOthers(const std::vector<ArchivedEmailRecord>& kept);
    ArchiveRemoval result(const EmailArchiveIndex& index);

    const ArchiveRemovalOptions& options_;
    std::shared_ptr<FilesToRemove> work_;
    ArchiveDestination destination_;
};

// False when the index has none of them. Of a repeated id the first record is the one that the library shows;
// the others go with it, and their files stay.
bool Removal::dropRecords(EmailArchiveIndex& index) {
    std::unordered_map<std::string_view, Target*> wanted;
    for (Target& target : work_->targets) {
        const bool stays = target.file.outcome == Outcome::failed || !target.refusal.empty();
        if (!stays) wanted.emplace(target.record.id, &target);
    }
    std::set<Target*> found;
    std::vector<ArchivedEmailRecord> kept;
    kept.reserve(index.records.size());
    for (ArchivedEmailRecord& record : index.records) {
        const auto same = wanted.find(record.id.view());
        Target* const target = same == wanted.end() ? nullptr : same->second;
        if (target != nullptr && found.insert(target).second &&
            record.emlRelativePath != target->record.emlRelativePath)
            target->refusal = "归档索引刚被别的程序改动，请刷新后再试";
        if (target == nullptr || !target->refusal.empty()) kept.push_back(std::move(record));
    }
    findOthers(kept);
    index.records.swap(kept);
    // What no record names any more was removed by somebody else.
    for (const auto& [id, target] : wanted) {
        if (!found.contains(target) && !target->file.isSettled()) target->file.outcome = Outcome::gone;
    }
    return index.records.size() != kept.size();
}

void Removal::findOthers(const std::vector<ArchivedEmailRecord>& kept) {
    std::unordered_multimap<std::string, Target*> byName;
    for (Target& target : work_->targets) {
        target.others.clear();
        byName.emplace(archive::comparableName(target.record.emlRelativePath), &target);
    }
    for (const ArchivedEmailRecord& record : kept) {
        const std::string path = record.emlRelativePath.str();
        const auto [first, last] = byName.equal_range(archive::comparableName(path));
        for (auto same = first; same != last; ++same) same->second->others.push_back(path);
    }
}

ArchiveRemoval Removal::result(const EmailArchiveIndex& index) {
    ArchiveRemoval result;
    for (const ArchivedEmailRecord& record : index.records) result.recordedIDs.insert(record.id);
    for (Target& target : work_->targets) {
        const std::string& id = target.record.id;
        if (target.file.outcome == Outcome::removed || target.file.outcome == Outcome::gone)
            result.removedPaths.push_back(target.record.emlRelativePath);
        if (!target.refusal.empty())
            result.failures.push_back({id, target.refusal});
        else if (target.file.outcome == Outcome::otherKind)
            result.failures.push_back(
                {id, "索引里写的不是归档邮件的文件：只去掉了这条记录，没有删除任何文件", true});
        else if (target.file.isSettled())
            result.removed.push_back(id);
        else
            result.failures.push_back({id, reasonOf(target.file)});
    }
    return result;
}

} // namespace

ArchiveRemoval removeFromArchive(FileLayer& files, const std::string& root,
                                 const std::vector<RecordToRemove>& records,
                                 const ArchiveRemovalOptions& options, const std::stop_token& stop) {
    return Removal(files, root, records, options, stop).run();
}

} // namespace corvane
