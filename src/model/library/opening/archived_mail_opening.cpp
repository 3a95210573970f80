#include "model/library/opening/archived_mail_opening.h"

#include <exception>
#include <utility>

#include "archive/opening/archived_cloud_file_opener.h"
#include "archive/opening/cloud_file.h"
#include "mailstore/index/live_presence.h"
#include "mailstore/index/original_address.h"
#include "model/mail/store/mail_store.h"
#include "platform/paths.h"
#include "platform/safe_opening.h"
#include "platform/threads/limited_answer.h"

namespace corvane {

struct ArchivedMailOpening::Opened {
    Outcome outcome;
    platform::Opening opening = platform::Opening::opened;
};

namespace {

struct OpenJob {
    const platform::Platform& platform;
    ArchivedEntry entry;
    ArchivedMailOpening::Action action = ArchivedMailOpening::Action::open;
};

struct RevealJob {
    const platform::Platform& platform;
    ArchivedEntry entry;
};

struct OriginalJob {
    MailStore mail;
    std::string messageIdentifier;
};

std::expected<std::string, std::string> broughtBack(const OpenJob& job, const std::stop_token& stop) {
    try {
        return ArchivedCloudFileOpener(job.platform).ensureLocal(job.entry, stop);
    } catch (const ArchivedCloudFileOpener::OpenError& error) {
        return std::unexpected(openErrorText(error.kind(), job.entry.locationRootPath));
    } catch (const std::exception& error) {
        return std::unexpected(std::string(error.what()));
    }
}

ArchivedMailOpening::OriginalAddress findOriginal(const OriginalJob& job, const TaskHandle& task) {
    MailStoreContext context = job.mail.context;
    context.stop = task.stopToken();
    const auto header =
        mailstore::liveMessageOriginalIDHeader(context, job.mail.rootPath, job.messageIdentifier);
    if (!header)
        return std::unexpected(header.error() == mailstore::NoOriginal::notThere ? OriginalFailure::notInMail
                                                                                 : OriginalFailure::noAnswer);
    const auto address = mailstore::originalAddress(*header);
    if (!address) return std::unexpected(OriginalFailure::notInMail);
    return *address;
}

} // namespace

ArchivedMailOpening::ArchivedMailOpening(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , openTask_(context.tasks)
  , lookTasks_(context.tasks) {}

void ArchivedMailOpening::openArchivedEmail(const ArchivedEntry& entry, Action action) {
    openingArchiveID_ = entry.id();
    outcome_.reset();
    openArchiveNote_.clear();
    openTask_.start(
        TaskPriority::userInitiated, OpenJob{context_.platform, entry, action},
        [](const OpenJob& job, const TaskHandle& task) {
            Opened opened{broughtBack(job, task.stopToken())};
            if (opened.outcome && job.action == Action::open && !task.isCancelled())
                opened.opening = platform::openOrShow(job.platform, *opened.outcome);
            return opened;
        },
        [this](Opened opened) { finish(std::move(opened)); });
    Q_EMIT changed();
}

void ArchivedMailOpening::finish(Opened opened) {
    openingArchiveID_.reset();
    if (opened.outcome && opened.opening == platform::Opening::refused)
        opened.outcome = std::unexpected(openingNote(opened.opening));
    else
        openArchiveNote_ = openingNote(opened.opening);
    outcome_ = std::move(opened.outcome);
    Q_EMIT changed();
    Q_EMIT ended();
}

void ArchivedMailOpening::cancel() {
    openTask_.cancel();
    if (std::exchange(openingArchiveID_, std::nullopt)) Q_EMIT changed();
}

void ArchivedMailOpening::revealArchivedEmail(const ArchivedEntry& entry) {
    lookTasks_.start(
        TaskPriority::userInitiated, RevealJob{context_.platform, entry},
        [](const RevealJob& job, const TaskHandle& task) {
            const std::string root = job.entry.locationRootPath.str();
            const std::string path = job.entry.record.emlRelativePath.str();
            const auto state = platform::limitedAnswer<archive::CloudFileState>(
                platform::placeLimit,
                [&system = job.platform, root, path](platform::JobLimit&) {
                    return archive::archivedFileState(system, root, path);
                },
                task.stopToken());
            const bool isThere = state == archive::CloudFileState::available;
            return isThere && job.platform.reveal(platform::joinPath(root, path));
        },
        [](bool) {});
}

void ArchivedMailOpening::originalAddress(const ArchivedEmailRecord& record, AddressAnswer answer) {
    if (!record.messageIdentifier) return answer(std::unexpected(OriginalFailure::notInMail));
    lookTasks_.start(TaskPriority::userInitiated,
                     OriginalJob{mailStoreOf(context_), record.messageIdentifier->str()}, &findOriginal,
                     std::move(answer));
}

void ArchivedMailOpening::locateOriginalInMail(const ArchivedEmailRecord& record, Answer answer) {
    originalAddress(record, [this, answer = std::move(answer)](const OriginalAddress& address) {
        if (!address) return answer(address.error());
        struct Job {
            const platform::Platform& platform;
            std::string address;
        };
        lookTasks_.start(
            TaskPriority::userInitiated, Job{context_.platform, *address},
            [](const Job& job, const TaskHandle&) { return job.platform.open(job.address); },
            [answer](bool wasOpened) {
                answer(wasOpened ? std::nullopt : std::optional(OriginalFailure::notOpened));
            });
    });
}

} // namespace corvane
