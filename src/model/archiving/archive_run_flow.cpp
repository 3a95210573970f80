#include "model/archiving/archive_run_flow.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <iterator>
#include <stop_token>
#include <utility>

#include <fmt/format.h>

#include "archive/run/mail_email_archiver.h"
#include "listing/archive_capacity.h"
#include "locations/places/destination_rules.h"
#include "locations/places/place_looks.h"
#include "platform/paths.h"
#include "records/stable_hash.h"
#include "records/texts/progress_texts.h"

namespace corvane {

namespace {

constexpr const char* nothingTicked = "文件不存在：没有选择要归档的邮件。";

struct RunJob {
    SharedMessageList candidates;
    ArchiveSelection selection;
    std::string destination;
    const platform::Platform& platform;
    platform::FileLayer& files;
    std::string mailRoot;
    std::string ownFolder;
};

struct EndedRun {
    ArchiveRunFlow::RunOutcome outcome;
    std::string signature;
    std::shared_ptr<const ReadingBatch> readings;
};

MessageList selectedOf(const RunJob& job) {
    MessageList selected;
    for (const MailMessageRecord& message : *job.candidates) {
        if (job.selection.contains(message.id)) selected.push_back(message);
    }
    return selected;
}

std::string runSignature(const MessageList& messages, const std::string& destination) {
    std::string run = fmt::format("postArchive:{}:", destination);
    for (const MailMessageRecord& message : messages)
        fmt::format_to(std::back_inserter(run), "{},", message.id);
    return stableHash(run);
}

// Absent also for a place that doesn't answer, which the run then meets itself.
std::optional<std::int64_t> availableBytes(const RunJob& job, PlaceLooks& looks) {
    using Answer = std::optional<std::int64_t>;
    return looks
        .ask<Answer>(job.destination, [&platform = job.platform, place = job.destination](
                                          PlaceLook&) { return platform.availableCapacity(place); })
        .value_or(std::nullopt);
}

ArchiveRunFlow::RunOutcome archived(const RunJob& job, const MessageList& messages,
                                    const ReportingTask<EmailArchiveProgress>& task) {
    if (messages.empty()) return std::unexpected(nothingTicked);
    PlaceLooks looks(job.platform, job.files, task.stopToken());
    if (auto refused = refusalOfArchive(looks, job.destination, job.mailRoot, job.ownFolder))
        return std::unexpected(std::move(*refused));
    if (auto shortfall = archiveCapacityShortfall(messages, availableBytes(job, looks)))
        return std::unexpected(std::move(*shortfall));
    try {
        ArchiverOptions options;
        options.markHidden = [&platform = job.platform](const std::string& path) {
            platform.markHidden(path);
        };
        options.bringFromCloud = [&platform = job.platform](const std::string& path) {
            if (!platform.isCloudPlaceholder(path)) return false;
            platform.requestDownload(path);
            return true;
        };
        const auto report = [&](const EmailArchiveProgress& progress) { task.report(progress); };
        return MailEmailArchiver(job.files, options)
            .archive(messages, job.destination, report, task.stopToken());
    } catch (const std::exception& error) {
        return std::unexpected(std::string(error.what()));
    }
}

// Taken out of the result: only the proof needs them. Empty for a run that wasn't made.
std::shared_ptr<const ReadingBatch> readingsOf(ArchiveRunFlow::RunOutcome& outcome,
                                               const std::string& destination) {
    auto batch = std::make_shared<ReadingBatch>();
    if (!outcome) return batch;
    batch->copies = std::exchange(outcome->copyReadings, {});
    auto files = std::exchange(outcome->archivedReadings, {});
    if (!files.empty()) batch->archived.emplace(platform::canonicalPath(destination), std::move(files));
    return batch;
}

EndedRun runArchive(const RunJob& job, const ReportingTask<EmailArchiveProgress>& task) {
    const MessageList messages = selectedOf(job);
    EndedRun ended{archived(job, messages, task), runSignature(messages, job.destination), nullptr};
    ended.readings = readingsOf(ended.outcome, job.destination);
    return ended;
}

} // namespace

ArchiveRunFlow::ArchiveRunFlow(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , runTask_(context.tasks) {}

void ArchiveRunFlow::setProgress(std::optional<EmailArchiveProgress> progress) {
    progress_ = std::move(progress);
    Q_EMIT progressChanged();
}

void ArchiveRunFlow::archiveSelectedEmails(SharedMessageList candidates, ArchiveSelection selection,
                                           const std::optional<std::string>& destination,
                                           Completion completion) {
    if (isArchiving()) {
        completion(std::unexpected("已有归档任务正在进行，请等待其完成。"));
        return;
    }
    if (!destination) {
        completion(std::unexpected("您没有将文件存储到该位置的权限：请先选择归档位置。"));
        return;
    }
    // Which of the ticked ones are candidates takes a look at each, which is the job's.
    const auto count = static_cast<std::int64_t>(std::min(selection.size(), candidates->size()));
    if (count == 0) {
        completion(std::unexpected(nothingTicked));
        return;
    }
    completion_ = std::move(completion);
    setProgress(EmailArchiveProgress{0, count, std::nullopt, preparingText(count)});
    Q_EMIT archiveRunStarted();
    runTask_.startReporting<EmailArchiveProgress>(
        TaskPriority::userInitiated,
        RunJob{std::move(candidates), std::move(selection), *destination, context_.platform,
               context_.support.files(), context_.mailRootPath, context_.support.baseDirectory(false)},
        &runArchive, [this](EmailArchiveProgress progress) { setProgress(std::move(progress)); },
        [this, root = *destination](EndedRun ended) {
            finishRun(std::move(ended.outcome), root, ended.signature, ended.readings);
        });
}

void ArchiveRunFlow::finishRun(RunOutcome outcome, const std::string& destination,
                               const std::string& signature,
                               const std::shared_ptr<const ReadingBatch>& readings) {
    const Completion completion = std::exchange(completion_, nullptr);
    setProgress(std::nullopt);
    Q_EMIT archiveFilesRead(readings);
    if (outcome) {
        Q_EMIT archiveRunFinished(*outcome, QString::fromStdString(destination),
                                  QString::fromStdString(signature));
    }
    Q_EMIT archiveRunEnded();
    completion(std::move(outcome));
}

} // namespace corvane
