#include "screens/mails/detail/attachment_actions.h"

#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include <QStandardPaths>
#include <QUrl>

#include "platform/files/directory.h"
#include "platform/files/document_file.h"
#include "platform/paths.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"
#include "text/hidden_characters.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr const char* folderPrefix = "corvane-attachments-";

// The name of the file on the disk, which is one component, without marks that make it look like another.
std::string nameOf(const std::string& path) {
    std::string name = text::withoutHiddenCharacters(platform::lastPathComponent(path));
    return name.empty() || name.front() == '.' ? "附件" + name : name;
}

std::string freePath(const std::string& folder, const std::string& name) {
    const std::string_view extension = platform::pathExtension(name);
    const std::string stem(platform::withoutExtension(name));
    std::string path = platform::joinPath(folder, name);
    for (int number = 2; platform::fileExists(path) && number < 10'000; ++number) {
        const std::string numbered = stem + " " + std::to_string(number);
        path = platform::joinPath(folder,
                                  extension.empty() ? numbered : numbered + "." + std::string(extension));
    }
    return path;
}

} // namespace

struct AttachmentActions::CopyJob {
    std::string from;
    std::string folder; // where the copy goes; empty: into a temporary one
    std::string temporaryDirectory;
    std::shared_ptr<platform::TemporaryFolder> temporary; // null before the first
};

struct AttachmentActions::Copied {
    std::string from;
    std::string path; // empty where it couldn't be copied
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
  , openTask_(context.tasks)
  , saveTask_(context.tasks) {}

void AttachmentActions::look() {
    struct Paths {
        std::vector<std::string> paths;
    };

    lookTask_.start(
        TaskPriority::userInitiated, Paths{list_.paths()},
        [](const Paths& job, const TaskHandle&) {
            std::vector<bool> found;
            for (const std::string& path : job.paths)
                found.push_back(!path.empty() && platform::isRegularFile(path));
            return found;
        },
        [this](std::vector<bool> found) { list_.setFound(std::move(found)); });
}

AttachmentActions::Copied AttachmentActions::copyOf(const CopyJob& job) {
    Copied copied{job.from, {}, false, job.temporary};
    try {
        if (job.folder.empty() && !copied.temporary)
            copied.temporary =
                std::make_shared<platform::TemporaryFolder>(job.temporaryDirectory, folderPrefix);
        const std::string folder = job.folder.empty() ? copied.temporary->path() : job.folder;
        const std::string path = freePath(folder, nameOf(job.from));
        fs::copy_file(job.from, path);
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
        copied.path = path;
        copied.isDocument = platform::isDocumentFile(path);
    } catch (const std::system_error&) {
        copied.path.clear();
    }
    return copied;
}

void AttachmentActions::open(int row) {
    const std::string from = list_.path(row);
    if (from.empty()) return;
    openTask_.start(
        TaskPriority::userInitiated, CopyJob{from, {}, context_.platform.temporaryDirectory(), opened_},
        [](const CopyJob& job, const TaskHandle&) { return copyOf(job); },
        [this](const Copied& copied) { handleOpenCopy(copied); });
}

void AttachmentActions::handleOpenCopy(const Copied& copied) {
    opened_ = copied.temporary;
    if (copied.path.empty()) {
        Q_EMIT said(QStringLiteral("这个附件的文件读不出来。"));
    } else if (!copied.isDocument) {
        showInFolder(copied.from,
                     QStringLiteral("这种文件可能会被系统运行，没有直接打开，已在文件夹中显示。"));
    } else if (!desktop_.open(QUrl::fromLocalFile(screens::wholeText(copied.path)))) {
        Q_EMIT said(QStringLiteral("系统没有能打开这个附件的程序。"));
    }
}

void AttachmentActions::save(int row) {
    const std::string from = list_.path(row);
    if (from.empty()) return;
    const QString downloads = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    saveTask_.start(
        TaskPriority::userInitiated, CopyJob{from, downloads.toStdString(), {}, nullptr},
        [](const CopyJob& job, const TaskHandle&) { return copyOf(job); },
        [this](const Copied& copied) {
            const QString path = screens::wholeText(copied.path);
            const QString home = screens::wholeText(context_.platform.realUserHomeDirectory());
            Q_EMIT said(path.isEmpty()
                            ? QStringLiteral("这个附件没有存下来：读不出来，或者「下载」文件夹不能写入。")
                            : QStringLiteral("已存到 %1").arg(screens::shownPath(path, home)));
        });
}

void AttachmentActions::showInFolder(const std::string& path, const QString& word) {
    const bool isShown = desktop_.reveal(screens::wholeText(path));
    const QString failure = QStringLiteral("无法在文件管理器中显示这个附件的文件。");
    if (!isShown || !word.isEmpty()) Q_EMIT said(isShown ? word : failure);
}

void AttachmentActions::reveal(int row) {
    const std::string path = list_.path(row);
    if (!path.empty()) showInFolder(path, {});
}

} // namespace corvane
