#include "model/library/archive_removal_flow.h"

#include <chrono>
#include <exception>
#include <utility>

#include "archive/removal/archive_removal.h"
#include "search/mail_search_index.h"

namespace corvane {

namespace {

using RecordsByRoot = std::map<std::string, std::vector<RecordToRemove>>;

constexpr std::chrono::milliseconds progressInterval(200);

struct RemovalJob {
    const platform::Platform& platform;
    CorvaneAppSupport support;
    SharedEntryList entries;
    std::shared_ptr<std::atomic<std::size_t>> tried;
};

RecordsByRoot recordsByRoot(const std::vector<ArchivedEntry>& entries) {
    RecordsByRoot records;
    for (const ArchivedEntry& entry : entries)
        records[entry.locationRootPath.str()].push_back(
            {entry.record.id.str(), entry.record.emlRelativePath.str()});
    return records;
}

std::string entryIDOf(const std::string& root, const std::string& recordID) {
    ArchivedEntry entry;
    entry.locationRootPath = root;
    entry.record.id = recordID;
    return entry.id();
}

// More than what killed removals leave is what a lost index leaves, and that may come back by a rebuild.
constexpr std::size_t mostRowsLeft = 1000;

// The rows of the removed mail and those that a killed removal has left: they answer for mail that no library
// lists. `indexed` are the ids of all rows before the removal, since others may add some meanwhile.
void removeSearchRows(MailSearchIndex& index, const SharedTextSet& indexed, const ArchiveRemoval& removal) {
    for (const std::string& id : removal.removed) index.remove(id);
    for (const ArchiveRemoval::Failure& failure : removal.failures) {
        if (failure.isRecordGone) index.remove(failure.id);
    }
    std::vector<SharedText> left;
    for (const SharedText& id : indexed) {
        if (!removal.recordedIDs.contains(id)) left.push_back(id);
    }
    if (left.size() > removal.removed.size() + mostRowsLeft) return;
    for (const SharedText& id : left) index.remove(id);
}

void removeIn(const RemovalJob& job, const std::string& root, const std::vector<RecordToRemove>& records,
              const TaskHandle& task, ArchiveRemovalEnd& end) {
    ArchiveRemovalOptions options;
    options.triedFiles = job.tried;
    options.markHidden = [&platform = job.platform](const std::string& path) { platform.markHidden(path); };
    const auto index = MailSearchIndex::open(job.support, root);
    const auto indexed = index ? index->mappedIDs() : std::nullopt;
    ArchiveRemoval removal = removeFromArchive(job.support.files(), root, records, options, task.stopToken());
    if (index) removeSearchRows(*index, indexed.value_or(SharedTextSet()), removal);
    for (const std::string& id : removal.removed) end.removedIDs.push_back(entryIDOf(root, id));
    for (ArchiveRemoval::Failure& failure : removal.failures) {
        end.failures.push_back(
            {entryIDOf(root, failure.id), std::move(failure.reason), failure.isRecordGone});
    }
    if (!removal.removedPaths.empty()) end.removedPaths[root] = std::move(removal.removedPaths);
}

ArchiveRemovalEnd removeAll(const RemovalJob& job, const TaskHandle& task) {
    ArchiveRemovalEnd end;
    for (const auto& [root, records] : recordsByRoot(*job.entries)) {
        try {
            removeIn(job, root, records, task, end);
        } catch (const std::exception& error) {
            for (const RecordToRemove& record : records)
                end.failures.push_back({entryIDOf(root, record.id), error.what()});
        }
    }
    return end;
}

} // namespace

ArchiveRemovalFlow::ArchiveRemovalFlow(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , task_(context.tasks) {
    progressTimer_.setInterval(progressInterval);
    connect(&progressTimer_, &QTimer::timeout, this, &ArchiveRemovalFlow::progressChanged);
}

bool ArchiveRemovalFlow::deleteArchivedEntries(SharedEntryList entries) {
    if (isRemoving()) return false;
    lastEnd_.reset();
    tried_ = std::make_shared<std::atomic<std::size_t>>();
    progressTimer_.start();
    task_.start(TaskPriority::userInitiated,
                RemovalJob{context_.platform, context_.support, std::move(entries), tried_}, &removeAll,
                [this](ArchiveRemovalEnd end) {
                    progressTimer_.stop();
                    lastEnd_ = std::move(end);
                    Q_EMIT removalEnded();
                });
    return true;
}

} // namespace corvane
