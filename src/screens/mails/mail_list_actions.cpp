#include "screens/mails/mail_list_actions.h"

#include "records/name_and_address.h"
#include "screens/lists/message_lines.h"
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
    job.selected.rows.forEach([&](int row) {
        const SharedText& id = (*job.selected.messages)[static_cast<std::size_t>(row)].id;
        if (!job.archivedIDs->contains(id)) ids->insert(id);
    });
    return ids;
}

} // namespace

MailListActions::MailListActions(CorvaneViewModel& model, DesktopActions& desktop, MessageListModel& list,
                                 MailListFilters& filters, QObject* parent)
  : QObject(parent)
  , model_(model)
  , desktop_(desktop)
  , list_(list)
  , filters_(filters)
  , copyTask_(model.context().tasks)
  , archiveTask_(model.context().tasks) {}

void MailListActions::setAside(bool isSetAside) {
    if (const MailMessageRecord* message = current()) model_.archiving().setAside.set({*message}, isSetAside);
}

const MailMessageRecord* MailListActions::current() const {
    return list_.record(list_.selection()->currentRow());
}

void MailListActions::copySelection() {
    copyTask_.start(TaskPriority::userInitiated,
                    screens::MessageRows{list_.records(), list_.selection()->rows()}, &screens::linesOfRows,
                    [this](const QString& lines) { desktop_.copy(lines); });
}

void MailListActions::copySubject() {
    if (const auto* message = current()) desktop_.copy(screens::wholeText(message->subject));
}

void MailListActions::copyMessageID() {
    const auto* message = current();
    if (message != nullptr && message->messageIdentifier) {
        desktop_.copy(screens::wholeText(*message->messageIdentifier));
    }
}

void MailListActions::copyPath() {
    if (const auto* message = current()) desktop_.copy(screens::wholeText(message->fileURL.path()));
}

void MailListActions::revealFile() {
    const auto* message = current();
    if (message != nullptr && !desktop_.reveal(screens::wholeText(message->fileURL.path()))) {
        Q_EMIT failed(QStringLiteral("无法在文件管理器中显示这封邮件的文件。"));
    }
}

void MailListActions::openFile() {
    const auto* message = current();
    if (message != nullptr &&
        !desktop_.open(QUrl::fromLocalFile(screens::wholeText(message->fileURL.path()))))
        Q_EMIT failed(QStringLiteral("系统没有能打开这封邮件的程序。"));
}

void MailListActions::openInMail() {
    const auto* message = current();
    if (message == nullptr) return;
    if (message->messageIdentifier && desktop_.open(mailURL(*message->messageIdentifier))) return;
    openFile();
}

void MailListActions::filterBySender() {
    const auto* message = current();
    if (message == nullptr) return;
    filters_.setQuery(screens::wholeText(addressOf(message->sender)));
    filters_.applyQuery();
}

void MailListActions::filterByYear() {
    const auto* message = current();
    if (message == nullptr) return;
    const auto& years = *model_.mail().catalog.messageYearByID();
    const auto year = years.find(message->id.view());
    if (year != years.end()) model_.mail().filters.set(&ListFilters::filterYears, {year->second});
}

void MailListActions::archiveSelection() {
    archiveTask_.start(TaskPriority::userInitiated,
                       ArchiveJob{{list_.records(), list_.selection()->rows()}, list_.archivedIDs()},
                       &idsToArchive,
                       [this](const std::shared_ptr<const SharedTextSet>& ids) { requestArchive(ids); });
}

void MailListActions::requestArchive(const std::shared_ptr<const SharedTextSet>& ids) {
    if (ids->empty()) {
        Q_EMIT failed(QStringLiteral("选中的邮件都已经归档。"));
    } else {
        Q_EMIT archiveRequested(ids);
    }
}

} // namespace corvane
