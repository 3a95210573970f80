// What the user can do with the selected messages of the mail list.
#include <QUrl>

#include "records/name_and_address.h"
#include "screens/lists/message_lines.h"
#include "screens/mails/mail_list_screen.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

// Apple Mail's scheme. Without "//": an identifier is no name of a host that QUrl would take.
QUrl mailURL(std::string_view messageID) {
    const QByteArray encoded =
        QUrl::toPercentEncoding(screens::wholeText(messageID), QByteArrayLiteral("@+="), {});
    return QUrl::fromEncoded(QByteArrayLiteral("message:%3C") + encoded + QByteArrayLiteral("%3E"),
                             QUrl::StrictMode);
}

// The address in "name <address>", or the whole.
std::string_view addressOf(std::string_view sender) {
    const auto parts = nameAndAddress(sender);
    return parts && parts->rest.empty() ? parts->address : sender;
}

struct ArchiveJob {
    screens::MessageRows selected;
    std::shared_ptr<const SharedTextSet> archivedIDs;
};

// Without what is archived already.
std::shared_ptr<const SharedTextSet> idsToArchive(const ArchiveJob& job, const TaskHandle&) {
    auto ids = std::make_shared<SharedTextSet>();
    for (const auto& range : job.selected.rows.ranges()) {
        for (int row = range.first; row < range.end; ++row) {
            const SharedText& id = (*job.selected.messages)[static_cast<std::size_t>(row)].id;
            if (!job.archivedIDs->contains(id)) ids->insert(id);
        }
    }
    return ids;
}

} // namespace

void MailListScreen::copySelection() {
    copyTask_.start(TaskPriority::userInitiated,
                    screens::MessageRows{list_.messages(), list_.selection().rows()}, &screens::linesOfRows,
                    [this](const QString& lines) { desktop_.copy(lines); });
}

void MailListScreen::copySubject() {
    if (const auto* message = current()) desktop_.copy(screens::wholeText(message->subject));
}

void MailListScreen::copyMessageID() {
    const auto* message = current();
    if (message != nullptr && message->messageIdentifier) {
        desktop_.copy(screens::wholeText(*message->messageIdentifier));
    }
}

void MailListScreen::copyPath() {
    if (const auto* message = current()) desktop_.copy(screens::wholeText(message->fileURL.path()));
}

void MailListScreen::revealFile() {
    const auto* message = current();
    if (message != nullptr && !desktop_.reveal(screens::wholeText(message->fileURL.path()))) {
        Q_EMIT actionFailed(QStringLiteral("无法在文件管理器中显示这封邮件的文件。"));
    }
}

bool MailListScreen::openOrTell(const QUrl& url) {
    if (desktop_.open(url)) return true;
    Q_EMIT actionFailed(QStringLiteral("系统没有能打开这封邮件的程序。"));
    return false;
}

void MailListScreen::openFile() {
    if (const auto* message = current()) {
        openOrTell(QUrl::fromLocalFile(screens::wholeText(message->fileURL.path())));
    }
}

void MailListScreen::openInMail() {
    const auto* message = current();
    if (message == nullptr) return;
    if (message->messageIdentifier && desktop_.open(mailURL(*message->messageIdentifier))) return;
    openFile();
}

void MailListScreen::filterBySender() {
    const auto* message = current();
    if (message == nullptr) return;
    filters_.setQuery(screens::wholeText(addressOf(message->sender)));
    filters_.applyQuery();
}

void MailListScreen::filterByYear() {
    const auto* message = current();
    if (message == nullptr) return;
    const auto& years = *model_.catalog().messageYearByID();
    const auto year = years.find(message->id.view());
    if (year != years.end()) model_.filters().setFilterYears({year->second});
}

void MailListScreen::archiveSelection() {
    archiveTask_.start(TaskPriority::userInitiated,
                       ArchiveJob{{list_.messages(), list_.selection().rows()}, list_.archivedIDs()},
                       &idsToArchive,
                       [this](const std::shared_ptr<const SharedTextSet>& ids) { handOver(ids); });
}

void MailListScreen::handOver(const std::shared_ptr<const SharedTextSet>& ids) {
    if (ids->empty()) {
        Q_EMIT actionFailed(QStringLiteral("选中的邮件都已经归档。"));
    } else {
        Q_EMIT archiveRequested(ids);
    }
}

void MailListScreen::cancelScan() {
    model_.scanFlow().cancelScan();
}

void MailListScreen::recheckAccess() {
    model_.diskAccess().refreshFullDiskAccessState();
}

void MailListScreen::openAccessSettings() {
    if (!desktop_.open(QUrl(
            QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles")))) {
        Q_EMIT actionFailed(QStringLiteral("无法打开系统设置，请手动打开「完全磁盘访问权限」。"));
    }
}

} // namespace corvane
