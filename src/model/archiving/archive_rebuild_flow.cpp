#include "model/archiving/archive_rebuild_flow.h"

#include <exception>
#include <memory>
#include <utility>

#include "archive/attachments/listed_names.h"
#include "model/tasks/progress_pace.h"

namespace corvane {

namespace {

using Outcome = ArchiveRebuildFlow::Outcome;
using Progress = ArchiveRebuildFlow::Progress;

struct LookJob {
    std::string root;
    platform::FileLayer& files;
};

struct RebuildJob {
    std::string root;
    const platform::Platform& platform;
    platform::FileLayer& files;
    archive::ScannedMail scanned;
};

struct Found {
    std::optional<RebuildOffer> offer;
};

Found lookFor(const LookJob& job, const TaskHandle& task) {
    const auto need = rebuildNeed(job.root, task.stopToken(), job.files);
    if (!need) return {};
    return {RebuildOffer{job.root, *need}};
}

Outcome rebuild(const RebuildJob& job, const ReportingTask<Progress>& task) {
    ProgressPace pace;
    RebuildOptions options;
    options.scanned = job.scanned;
    options.attachmentNames = archive::workerListedNames(job.platform);
    options.markHidden = [&job](const std::string& path) { job.platform.markHidden(path); };
    options.progress = [&](std::size_t read, std::size_t all) {
        if (pace.isDue(read, all)) task.report({read, all});
    };
    try {
        return rebuildArchive(job.root, options, task.stopToken(), job.files);
    } catch (const std::exception& error) {
        return std::unexpected(std::string(error.what()));
    }
}

} // namespace

ArchiveRebuildFlow::ArchiveRebuildFlow(ModelContext& context, ScanProvider scanned, QObject* parent)
  : QObject(parent)
  , context_(context)
  , scanned_(std::move(scanned))
  , lookTask_(context.tasks)
  , rebuildTask_(context.tasks) {}

void ArchiveRebuildFlow::look(const std::optional<std::string>& root) {
    if (isRunning()) return;
    if (!root) {
        lookTask_.cancel();
        if (std::exchange(offer_, std::nullopt)) Q_EMIT changed();
        return;
    }
    lookTask_.start(TaskPriority::utility, LookJob{*root, context_.support.files()}, &lookFor,
                    [this](Found found) {
                        if (offer_ == found.offer) return;
                        offer_ = std::move(found.offer);
                        Q_EMIT changed();
                    });
}

void ArchiveRebuildFlow::start() {
    if (!offer_ || isRunning()) return;
    lookTask_.cancel();
    progress_ = {};
    outcome_.reset();
    rebuildTask_.startReporting<Progress>(
        TaskPriority::userInitiated,
        RebuildJob{offer_->root, context_.platform, context_.support.files(), scanned_()}, &rebuild,
        [this](Progress progress) {
            progress_ = progress;
            Q_EMIT changed();
        },
        [this](Outcome outcome) { finish(std::move(outcome)); });
    Q_EMIT changed();
}

void ArchiveRebuildFlow::finish(Outcome outcome) {
    outcome_ = std::move(outcome);
    const bool isDone = *outcome_ && !(*outcome_)->wasCancelled;
    ReadingBatch read;
    if (isDone) {
        read.archived[offer_->root] = std::exchange((*outcome_)->readings, {});
        offer_.reset();
    }
    Q_EMIT changed();
    if (!isDone) return;
    Q_EMIT archiveFilesRead(std::make_shared<const ReadingBatch>(std::move(read)));
    Q_EMIT rebuilt();
}

} // namespace corvane
