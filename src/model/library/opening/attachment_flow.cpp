#include "model/library/opening/attachment_flow.h"

#include <cstdint>
#include <exception>
#include <stop_token>
#include <system_error>
#include <utility>

#include "library/displayable_names.h"
#include "model/library/opening/opening_texts.h"
#include "platform/safe_opening.h"
#include "records/texts/error_reasons.h"

namespace corvane {

namespace {

struct OneJob {
    ArchivedAttachmentExtractor extractor;
    const platform::Platform& platform;
    platform::FileLayer& files;
    AttachmentRef attachment;
    std::string target{}; // of a saving
};

struct SavingJob {
    ArchivedAttachmentExtractor extractor;
    platform::FileLayer& files;
    std::vector<AttachmentRef> attachments;
    std::string folder;
};

struct ThumbnailJob {
    const platform::Platform& platform;
    std::string path;
    int edge = 0;
};

std::string textOf(const std::exception& error) {
    const auto* const system = dynamic_cast<const std::system_error*>(&error);
    return system == nullptr ? error.what() : systemErrorReason(system->code().value());
}

std::expected<std::string, std::string> prepared(const OneJob& job, const std::stop_token& stop) {
    try {
        return job.extractor.preparedAttachment(job.attachment, stop);
    } catch (const std::exception& error) {
        return std::unexpected(textOf(error));
    }
}

std::expected<std::string, std::string> opened(const OneJob& job, const std::stop_token& stop) {
    const auto path = prepared(job, stop);
    if (!path || stop.stop_requested()) return path;
    const platform::Opening opening = platform::openOrShow(job.platform, *path);
    if (opening == platform::Opening::refused) return std::unexpected(openingNote(opening));
    return openingNote(opening);
}

std::expected<SavedAttachment, std::string> saved(const OneJob& job, const std::stop_token& stop) {
    try {
        return corvane::saveAttachment(job.extractor, job.files, job.attachment, job.target, stop);
    } catch (const std::exception& error) {
        return std::unexpected(textOf(error));
    }
}

AttachmentFlow::SavingOutcome savedAll(const SavingJob& job,
                                       const ReportingTask<AttachmentFlow::Progress>& task) {
    try {
        return corvane::saveAttachments(
            job.extractor, job.files, job.attachments, job.folder,
            [&](std::int64_t done, std::int64_t total) { task.report({done, total}); }, task.stopToken());
    } catch (const std::exception& error) {
        return std::unexpected(textOf(error));
    }
}

} // namespace

std::vector<AttachmentRef> displayableAttachments(const ArchivedEntry& entry) {
    std::vector<AttachmentRef> attachments;
    for (const DisplayableName& shown : displayableNames(entry.record.attachmentNames))
        attachments.push_back({entry, shown.name.str(), shown.occurrence});
    return attachments;
}

AttachmentFlow::AttachmentFlow(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , cache_(std::make_shared<archive::AttachmentCache>(context.platform.temporaryDirectory()))
  , tasks_(context.tasks)
  , savingTask_(context.tasks) {}

ArchivedAttachmentExtractor AttachmentFlow::extractor() const {
    return {context_.platform, cache_};
}

void AttachmentFlow::prepareAttachment(AttachmentRef attachment, PathAnswer answer) {
    tasks_.start(
        TaskPriority::userInitiated,
        OneJob{extractor(), context_.platform, context_.support.files(), std::move(attachment)},
        [](const OneJob& job, const TaskHandle& task) { return prepared(job, task.stopToken()); },
        std::move(answer));
}

void AttachmentFlow::openAttachment(AttachmentRef attachment, PathAnswer answer) {
    tasks_.start(
        TaskPriority::userInitiated,
        OneJob{extractor(), context_.platform, context_.support.files(), std::move(attachment)},
        [](const OneJob& job, const TaskHandle& task) { return opened(job, task.stopToken()); },
        std::move(answer));
}

void AttachmentFlow::makeThumbnail(std::string path, int edge, ThumbnailAnswer answer) {
    tasks_.start(
        TaskPriority::utility, ThumbnailJob{context_.platform, std::move(path), edge},
        [](const ThumbnailJob& job, const TaskHandle& task) {
            return corvane::makeThumbnail(job.platform, job.path, job.edge, task.stopToken());
        },
        std::move(answer));
}

void AttachmentFlow::saveAttachment(AttachmentRef attachment, std::string target, SavedAnswer answer) {
    tasks_.start(
        TaskPriority::userInitiated,
        OneJob{extractor(), context_.platform, context_.support.files(), std::move(attachment),
               std::move(target)},
        [](const OneJob& job, const TaskHandle& task) { return saved(job, task.stopToken()); },
        std::move(answer));
}

void AttachmentFlow::saveAttachments(std::vector<AttachmentRef> attachments, std::string folder) {
    progress_ = Progress{0, std::ssize(attachments)};
    outcome_.reset();
    savingTask_.startReporting<Progress>(
        TaskPriority::userInitiated,
        SavingJob{extractor(), context_.support.files(), std::move(attachments), std::move(folder)},
        &savedAll,
        [this](Progress progress) {
            progress_ = progress;
            Q_EMIT savingChanged();
        },
        [this](SavingOutcome outcome) {
            progress_.reset();
            outcome_ = std::move(outcome);
            Q_EMIT savingChanged();
            Q_EMIT savingEnded();
        });
    Q_EMIT savingChanged();
}

} // namespace corvane
