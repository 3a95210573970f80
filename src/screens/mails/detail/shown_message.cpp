#include "screens/mails/detail/shown_message.h"

#include <vector>

#include "platform/paths.h"
#include "records/texts/formatters.h"
#include "records/texts/preview_placeholders.h"
#include "screens/texts/shown_text.h"
#include "text/case.h"
#include "text/graphemes.h"

namespace corvane {

namespace {

constexpr qsizetype subjectLimit = 2'000;
constexpr qsizetype recipientsLimit = 8'000;
constexpr qsizetype previewLimit = 20'000;
constexpr std::size_t mostFilesShown = 50;

// A store that was tampered with could name one message in a million files.
std::vector<FileURL> shownFiles(const MailMessageRecord& message) {
    auto files = message.allMessageFileURLs();
    if (files.size() > mostFilesShown) files.resize(mostFilesShown);
    return files;
}

// The name of the nearest ".mbox" folder around a file.
QString mailboxOf(const FileURL& file) {
    std::string_view folder = platform::parentPath(file.path());
    while (folder.size() > 1) {
        const std::string_view extension = platform::pathExtension(folder);
        if (text::equalsIgnoringCase(extension, "mbox")) {
            std::string_view name = platform::lastPathComponent(folder);
            name.remove_suffix(extension.size() + 1);
            return screens::shownLine(name);
        }
        folder = platform::parentPath(folder);
    }
    return {};
}

QString placeOf(const MailMessageRecord& message) {
    QStringList parts;
    if (message.accountName) parts += screens::shownLine(*message.accountName);
    parts += screens::shownLine(message.mailbox);
    parts += screens::wholeText(formatByteCount(message.messageSize));
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

QString previewOf(const MailMessageRecord& message) {
    const QString text = screens::shownText(message.preview, previewLimit).trimmed();
    const bool isCut = text::graphemeCount(message.preview) >= previewCharacters;
    return isCut ? text + u'…' : text;
}

QString copiesPlacesOf(const std::vector<FileURL>& files) {
    QStringList places;
    for (const FileURL& file : files) {
        const QString name = mailboxOf(file);
        if (!name.isEmpty() && !places.contains(name)) places += name;
    }
    return places.isEmpty() ? QString() : places.join(u"、") + u'。';
}

} // namespace

ShownMessage ShownMessage::of(const MailMessageRecord& message, bool archived,
                              const QString& missingPreview) {
    const std::vector<FileURL> files = shownFiles(message);
    ShownMessage shown;
    shown.archived = archived;
    shown.hasPreview = isPreviewText(message.preview);
    shown.isDated = message.date.has_value();
    shown.hasMessageID = message.messageIdentifier.has_value();
    shown.imported = message.importedMailbox();
    shown.subject = screens::shownLine(message.subject, subjectLimit);
    shown.sender = screens::shownLine(message.sender, subjectLimit);
    shown.recipients = screens::shownLine(message.recipients, recipientsLimit);
    shown.dateText = screens::wholeText(message.formattedDate());
    shown.place = placeOf(message);
    shown.preview = missingPreview.isEmpty() || shown.hasPreview ? previewOf(message) : missingPreview;
    if (message.hasDuplicateMessageFiles()) {
        shown.copiesTitle =
            QStringLiteral("本机有 %1 个文件保存着这封邮件").arg(message.duplicateMessageFileCount());
    }
    shown.copiesPlaces = copiesPlacesOf(files);
    for (const FileURL& file : files) shown.files += screens::shownLine(file.path(), subjectLimit);
    shown.attachmentCount = static_cast<int>(message.attachments.size());
    return shown;
}

} // namespace corvane
