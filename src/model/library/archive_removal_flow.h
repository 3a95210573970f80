// Taking mail out of its archives on the user's word: the files, the records, and what else is kept of them,
// such as their texts for searches. One removal at a time, in the background. Main thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QObject>
#include <QTimer>

#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/archived/archive_records.h"

namespace corvane {

struct ArchiveRemovalEnd {
    struct Failure {
        std::string entryID;
        std::string reason;        // for the user
        bool isRecordGone = false; // the file stays where it is, and no archive lists it any more
    };

    std::vector<std::string> removedIDs; // of entries
    std::vector<Failure> failures;
    // Paths of files that are there no more, by the archive's root.
    std::map<std::string, std::vector<std::string>> removedPaths;
};

class ArchiveRemovalFlow : public QObject {
    Q_OBJECT

  public:
    explicit ArchiveRemovalFlow(ModelContext& context, QObject* parent = nullptr);

    // Removes these entries from their archives; `removalEnded` follows. Each is either removed or fails with
    // its reason. False, without effect, while a removal is under way.
    bool deleteArchivedEntries(SharedEntryList entries);

    bool deleteArchivedEntry(const ArchivedEntry& entry) {
        return deleteArchivedEntries(std::make_shared<const std::vector<ArchivedEntry>>(1, entry));
    }

    // What wasn't begun stays, and is told as a failure.
    void cancel() { task_.requestStop(); }

    [[nodiscard]] bool isRemoving() const { return task_.isRunning(); }

    // How many of the files of the present or the last removal were tried.
    [[nodiscard]] std::size_t triedFiles() const { return tried_->load(); }

    // Of the last removal; absent before the first and while one is under way.
    [[nodiscard]] const std::optional<ArchiveRemovalEnd>& lastEnd() const { return lastEnd_; }

  Q_SIGNALS:
    // `triedFiles` may be another, several times a second while a removal is under way.
    void progressChanged();
    // Whatever came of it.
    void removalEnded();

  private:
    ModelContext& context_;
    std::optional<ArchiveRemovalEnd> lastEnd_;
    std::shared_ptr<std::atomic<std::size_t>> tried_ = std::make_shared<std::atomic<std::size_t>>();
    QTimer progressTimer_;
    TaskSlot task_;
};

} // namespace corvane
