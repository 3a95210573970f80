#include "screens/mails/detail/attachment_actions.h"

#include <chrono>
#include <exception>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include <QStandardPaths>
#include <QUrl>

#include "platform/files/document_file.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using namespace std::chrono_literals;

constexpr const char* folderPrefix = "corvane-attachments-";

// Whoever goes through the list looks at no sizes.
constexpr auto lookPause = 400ms;

struct LookJob {
    std::vector<MailAttachment> attachments;
};

struct SizeJob {
    const platform::Platform& platform;
    std::vector<MailAttachment> attachments;
};

struct Looked {
    std::vector<AttachmentPlace> places;
    bool isWhole = true; // false: nobody answered in time, which says of no attachment that it isn't there
};

Looked placesOf(const LookJob& job, const TaskHandle& task) {
    Looked looked;
    std::vector<AttachmentPlace>& places = looked.places;
    for (const MailAttachment& attachment : job.attachments) {
        if (task.isCancelled()) break;
        const auto place = placeOf(attachment, task.stopToken());
        // Its neighbours lie in the same place.
        looked.isWhole = place.has_value();
        if (!place) break;
        places.push_back(*place);
    }
    if (!task.isCancelled()) places.resize(job.attachments.size());
    return looked;
}

} // namespace

struct AttachmentActions::CopyJob {
    const platform::Platform& platform;
    MailAttachment attachment;
    std::string folder;                                   // where the copy goes; empty: into a temporary one
    std::shared_ptr<platform::TemporaryFolder> temporary; // null before the first
    std::string ownFile;                                  // Mail's; empty for what lies in a message
};

struct AttachmentActions::Copied {
    std::string path;    // empty where it couldn't be copied
    std::string failure; // for the user; empty where only the files are to blame
    std::string place;   // where to show it
    bool isDocument = false;
    std::shared_ptr<platform::TemporaryFolder> temporary;
};

AttachmentActions::AttachmentActions(ModelContext& context, DesktopActions& desktop,
                                     AttachmentListModel& list, QObject* parent)
  : QObject(parent)
  , context_(context)
  , desktop_(desktop)
  , list_(list)
  , lookTask_(context.tasks)
  , sizeTask_(context.tasks)
  , openTask_(context.tasks)
  , saveTask_(context.tasks) {
    sizeDelay_.setSingleShot(true);
    sizeDelay_.setInterval(lookPause);
    connect(&sizeDelay_, &QTimer::timeout, this, &AttachmentActions::lookAtSizes);
}

void AttachmentActions::look() {
    sizeTask_.cancel();
    sizeDelay_.stop();
    lookTask_.start(TaskPriority::userInitiated, LookJob{list_.attachments()}, &placesOf,
                    [this](const Looked& looked) {
                        list_.setPlaces(looked.places);
                        if (!looked.isWhole)
                            Q_EMIT said(QStringLiteral("附件所在的位置没有响应，没能查看附件在不在。"));
                        if (list_.lacksSizes()) sizeDelay_.start();
                    });
}

void AttachmentActions::lookAtSizes() {
    sizeTask_.start(
        TaskPriority::utility, SizeJob{context_.platform, list_.attachments()},
        [](const SizeJob& job, const TaskHandle& task) {
            return attachmentSizes(job.platform, job.attachments, task.stopToken());
        },
        [this](const std::vector<std::optional<std::int64_t>>& sizes) { list_.setSizes(sizes); });
}

AttachmentActions::Copied AttachmentActions::copyOf(const CopyJob& job, const TaskHandle& task) {
    Copied copied{.path = {}, .failure = {}, .place = job.ownFile, .temporary = job.temporary};
    try {
        if (job.folder.empty() && !copied.temporary)
            copied.temporary =
                std::make_shared<platform::TemporaryFolder>(job.platform.temporaryDirectory(), folderPrefix);
        copied.path =
            copyAttachment(job.platform, job.attachment,
                           job.folder.empty() ? copied.temporary->path() : job.folder, task.stopToken());
        copied.isDocument = platform::isDocumentFile(copied.path);
        if (copied.place.empty()) copied.place = copied.path;
    } catch (const std::system_error& error) {
        copied.path.clear();
        if (error.code() == std::errc::timed_out) copied.failure = "附件所在的位置没有响应，请稍后再试。";
    } catch (const std::exception& error) {
        copied.failure = error.what();
    }
    return copied;
}

void AttachmentActions::open(int row) {
    const MailAttachment* attachment = list_.found(row);
    if (attachment == nullptr) return;
    const AttachmentPlace place = list_.place(row);
    openTask_.start(TaskPriority::userInitiated,
                    CopyJob{context_.platform, *attachment, {}, opened_, place.isOwnFile ? place.path : ""},
                    &copyOf, [this](const Copied& copied) { handleOpenCopy(copied); });
}

void AttachmentActions::handleOpenCopy(const Copied& copied) {
    opened_ = copied.temporary;
    if (copied.path.empty()) {
        Q_EMIT said(copied.failure.empty() ? QStringLiteral("这个附件的文件读不出来。")
                                           : screens::shownLine(copied.failure));
    } else if (!copied.isDocument) {
        showInFolder(copied.place,
                     QStringLiteral("这种文件可能会被系统运行，没有直接打开，已在文件夹中显示。"));
    } else if (!desktop_.open(QUrl::fromLocalFile(screens::wholeText(copied.path)))) {
        Q_EMIT said(QStringLiteral("系统没有能打开这个附件的程序。"));
    }
}

void AttachmentActions::save(int row) {
    const MailAttachment* attachment = list_.found(row);
    if (attachment == nullptr) return;
    const QString downloads = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    saveTask_.start(
        TaskPriority::userInitiated,
        CopyJob{context_.platform, *attachment, downloads.toStdString(), nullptr, {}}, &copyOf,
        [this](const Copied& copied) {
            const QString path = screens::wholeText(copied.path);
            const QString home = screens::wholeText(context_.platform.realUserHomeDirectory());
            if (!copied.failure.empty())
                Q_EMIT said(QStringLiteral("这个附件没有存下来：%1").arg(screens::shownLine(copied.failure)));
            else if (path.isEmpty())
                Q_EMIT said(QStringLiteral("这个附件没有存下来：读不出来，或者「下载」文件夹不能写入。"));
            else
                Q_EMIT said(QStringLiteral("已存到 %1").arg(screens::shownPath(path, home)));
        });
}

void AttachmentActions::showInFolder(const std::string& path, const QString& word) {
    const bool isShown = desktop_.reveal(screens::wholeText(path));
    const QString failure = QStringLiteral("无法在文件管理器中显示这个附件的文件。");
    if (!isShown || !word.isEmpty()) Q_EMIT said(isShown ? word : failure);
}

void AttachmentActions::reveal(int row) {
    const std::string path = list_.place(row).path;
    if (!path.empty()) showInFolder(path, {});
}

} // namespace corvane
