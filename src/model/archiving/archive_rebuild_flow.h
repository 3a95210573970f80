// The way back for the chosen archive when its index is missing or damaged: finds out whether there is
// something to rebuild, and rebuilds it. Main thread; disks are touched by background jobs only.
#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <optional>
#include <string>

#include <QObject>

#include "archive/checks/archive_rebuild.h"
#include "archive/checks/scanned_copies.h"
#include "model/archiving/proof/kept_readings.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

struct RebuildOffer {
    std::string root;
    RebuildNeed need;

    friend bool operator==(const RebuildOffer&, const RebuildOffer&) = default;
};

class ArchiveRebuildFlow : public QObject {
    Q_OBJECT

  public:
    struct Progress {
        std::size_t read = 0;
        std::size_t all = 0; // 0 until the files are listed
    };

    // A result, or the user's text of what kept the index from being rebuilt.
    using Outcome = std::expected<ArchiveRebuild, std::string>;

    // The last scan and what was read of it; asked on the main thread at the start of a rebuild.
    using ScanProvider = std::function<archive::ScannedMail()>;

    ArchiveRebuildFlow(ModelContext& context, ScanProvider scanned, QObject* parent = nullptr);

    // Looks whether this archive needs it; absent withdraws the offer. No effect during a rebuild.
    void look(const std::optional<std::string>& root);

    // Absent while there is nothing to rebuild.
    [[nodiscard]] const std::optional<RebuildOffer>& offer() const { return offer_; }

    // Takes the offer; no effect without one or while it is at work.
    void start();

    // The rebuild ends without a change.
    void cancel() { rebuildTask_.requestStop(); }

    [[nodiscard]] bool isRunning() const { return rebuildTask_.isRunning(); }

    [[nodiscard]] const Progress& progress() const { return progress_; }

    // Of the last rebuild; absent before it and while another one runs.
    [[nodiscard]] const std::optional<Outcome>& outcome() const { return outcome_; }

  Q_SIGNALS:
    void changed();
    // What a rebuild has read of its archive; before `rebuilt`.
    void archiveFilesRead(const SharedReadings& readings);
    // The index of an archive has been made anew.
    void rebuilt();

  private:
    void finish(Outcome outcome);

    ModelContext& context_;
    ScanProvider scanned_;
    std::optional<RebuildOffer> offer_;
    Progress progress_;
    std::optional<Outcome> outcome_;
    TaskSlot lookTask_;
    TaskSlot rebuildTask_;
};

} // namespace corvane
