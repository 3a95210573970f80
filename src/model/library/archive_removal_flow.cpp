#include "model/library/archive_removal_flow.h"

#include <exception>
#include <utility>

#include "archive/removal/archive_removal.h"
#include "search/mail_search_index.h"

namespace corvane {

namespace {

using RecordsByRoot = std::map<std::string, std::vector<RecordToRemove>>;

struct RemovalJob {
    const platform::Platform& platform;
    CorvaneAppSupport support;
    RecordsByRoot records;
};

std::string entryIDOf(const std::string& root, const std::string& recordID) {
    ArchivedEntry entry;
    entry.locationRootPath = root;
    entry.record.id = recordID;
    return entry.id();
}

// What can't be removed answers for a mail that no library lists.
void removeSearchRows(const CorvaneAppSupport& support, const std::string& root,
                      const std::vector<std::string>& ids) {
    if (ids.empty()) return;
    const auto index = MailSearchIndex::open(support, root);
    for (const std::string& id : ids) {
        if (index) index->remove(id);
    }
}

void removeIn(const RemovalJob& job, const std::string& root, const std::vector<RecordToRemove>& records,
              const TaskHandle& task, ArchiveRemovalEnd& end) {
    ArchiveRemovalOptions options;
    options.markHidden = [&platform = job.platform](const std::string& path) { platform.markHidden(path); };
    ArchiveRemoval removal = removeFromArchive(job.support.files(), root, records, options, task.stopToken());
    std::vector<std::string> goneRecords = removal.removed;
    for (const std::string& id : removal.removed) end.removedIDs.push_back(entryIDOf(root, id));
    for (ArchiveRemoval::Failure& failure : removal.failures) {
        if (failure.isRecordGone) goneRecords.push_back(failure.id);
        end.failures.push_back({entryIDOf(root, failure.id), std::move(failure.reason)});
    }
    removeSearchRows(job.support, root, goneRecords);
    if (!removal.removedPaths.empty()) end.removedPaths[root] = std::move(removal.removedPaths);
}

ArchiveRemovalEnd removeAll(const RemovalJob& job, const TaskHandle& task) {
    ArchiveRemovalEnd end;
    for (const auto& [root, records] : job.records) {
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
  , task_(context.tasks) {}

bool ArchiveRemovalFlow::deleteArchivedEntries(const std::vector<ArchivedEntry>& entries) {
    if (isRemoving()) return false;
    RecordsByRoot records;
    for (const ArchivedEntry& entry : entries)
        records[entry.locationRootPath.str()].push_back(
            {entry.record.id.str(), entry.record.emlRelativePath.str()});
    lastEnd_.reset();
    task_.start(TaskPriority::userInitiated,
                RemovalJob{context_.platform, context_.support, std::move(records)}, &removeAll,
                [this](ArchiveRemovalEnd end) {
                    lastEnd_ = std::move(end);
                    Q_EMIT removalEnded();
                });
    Q_EMIT removalStarted();
    return true;
}

} // namespace corvane
