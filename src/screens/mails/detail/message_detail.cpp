#include "screens/mails/detail/message_detail.h"

#include "platform/paths.h"
#include "records/formatters.h"
#include "records/preview_placeholders.h"
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

} // namespace

bool holdsPreview(const MailMessageRecord& message) {
    return !message.preview.empty() && message.preview != lazyPreviewPlaceholder &&
           message.preview != emptyBodyPreviewPlaceholder;
}

void MessageDetail::show(const MailMessageRecord* message, bool archived) {
    const bool isSame = message == nullptr ? !message_ : message_ && message_->id == message->id;
    if (isSame && archived_ == archived && (message == nullptr || *message_ == *message)) return;
    message_ = message == nullptr ? std::nullopt : std::optional(*message);
    archived_ = archived;
    if (!isSame) missingPreview_.clear();
    attachments_.setAttachments(message_ ? message_->attachments : std::vector<MailAttachmentRecord>());
    Q_EMIT changed();
    if (!isSame) Q_EMIT messageChanged();
}

void MessageDetail::setPreviewMissing(const QString& messageID, bool hasFile) {
    if (!message_ || message_->id != messageID.toStdString()) return;
    missingPreview_ = hasFile ? QStringLiteral("没有可以显示的正文。")
                              : QStringLiteral("邮件文件已不在原来的位置，请更新 Mail 数据后再看。");
    Q_EMIT changed();
}

QString MessageDetail::subject() const {
    return message_ ? screens::shownLine(message_->subject, subjectLimit) : QString();
}

QString MessageDetail::sender() const {
    return message_ ? screens::shownLine(message_->sender, subjectLimit) : QString();
}

QString MessageDetail::recipients() const {
    return message_ ? screens::shownLine(message_->recipients, recipientsLimit) : QString();
}

QString MessageDetail::dateText() const {
    return message_ ? screens::wholeText(message_->formattedDate()) : QString();
}

QString MessageDetail::place() const {
    if (!message_) return {};
    QStringList parts;
    if (message_->accountName) parts += screens::shownLine(*message_->accountName);
    parts += screens::shownLine(message_->mailbox);
    parts += screens::wholeText(formatByteCount(message_->messageSize));
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

QString MessageDetail::preview() const {
    if (!message_) return {};
    if (!missingPreview_.isEmpty() && !hasPreview()) return missingPreview_;
    const QString text = screens::shownText(message_->preview, previewLimit).trimmed();
    const bool isCut = text::graphemeCount(message_->preview) >= previewCharacters;
    return isCut ? text + u'…' : text;
}

QString MessageDetail::copiesTitle() const {
    if (!message_ || !message_->hasDuplicateMessageFiles()) return {};
    return QStringLiteral("本机有 %1 个文件保存着这封邮件").arg(message_->duplicateMessageFileCount());
}

QString MessageDetail::copiesPlaces() const {
    if (!message_) return {};
    QStringList places;
    for (const FileURL& file : shownFiles(*message_)) {
        const QString name = mailboxOf(file);
        if (!name.isEmpty() && !places.contains(name)) places += name;
    }
    return places.isEmpty() ? QString() : places.join(u"、") + u'。';
}

QStringList MessageDetail::files() const {
    QStringList paths;
    if (!message_) return paths;
    for (const FileURL& file : shownFiles(*message_)) paths += screens::shownLine(file.path(), subjectLimit);
    return paths;
}

int MessageDetail::attachmentCount() const {
    return message_ ? static_cast<int>(message_->attachments.size()) : 0;
}

QString MessageDetail::attachmentsSize() const {
    if (attachmentCount() == 0) return {};
    std::int64_t known = 0;
    bool isWhole = true;
    for (const MailAttachmentRecord& attachment : message_->attachments) {
        isWhole = isWhole && attachment.estimatedSize.has_value();
        known += attachment.estimatedSize.value_or(0);
    }
    if (known == 0 && !isWhole) return {};
    const QString sum = screens::wholeText(formatByteCount(known));
    return isWhole ? sum : QStringLiteral("已知 ") + sum;
}

} // namespace corvane
