#include "screens/lists/message_list_model.h"

#include <utility>

#include "records/model_enums.h"
#include "records/texts/formatters.h"
#include "records/texts/preview_placeholders.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

constexpr qsizetype previewLimit = 120;

// Until a text was read, where the message lies says more than that it wasn't.
std::string_view thirdLine(const MailMessageRecord& message) {
    return isPreviewText(message.preview) ? message.preview.view() : message.mailbox.view();
}

QString senderName(const MailMessageRecord& message) {
    return screens::shownSender(message.sender);
}

bool showsTheSame(const MailMessageRecord& a, const MailMessageRecord& b) {
    return a.subject == b.subject && a.sender == b.sender && a.date == b.date && a.preview == b.preview &&
           a.messageSize == b.messageSize && a.attachments.size() == b.attachments.size();
}

} // namespace

RowChanges messageRowChanges(const MessageList& before, const MessageList& after,
                             const RowChangeRules& rules) {
    return rowChanges(before, after, MessageID(), showsTheSame, rules);
}

QVariant MessageListModel::value(const MailMessageRecord& message, int role) const {
    switch (role) {
    case SenderRole:
        return senderName(message);
    case SubjectRole:
        return screens::shownLine(message.subject);
    case PreviewRole:
        return previewLine(message);
    case DateTextRole:
        return screens::wholeText(message.formattedDate());
    case SizeTextRole:
        return screens::wholeText(formatByteCount(message.messageSize));
    case AttachmentCountRole:
        return static_cast<int>(message.attachments.size());
    case ArchivedRole:
        return isArchived(message);
    case TroubleRole:
        return troubleOf(message).label;
    case TroubleSymbolRole:
        return troubleOf(message).symbol;
    case TroubleToneRole:
        return troubleOf(message).tone;
    case SpokenNameRole:
        return spokenName(message);
    default:
        return {};
    }
}

QHash<int, QByteArray> MessageListModel::roleNames() const {
    return {{SenderRole, "sender"},
            {SubjectRole, "subject"},
            {PreviewRole, "preview"},
            {DateTextRole, "dateText"},
            {SizeTextRole, "sizeText"},
            {AttachmentCountRole, "attachmentCount"},
            {ArchivedRole, "archived"},
            {SelectedRole, "selected"},
            {SpokenNameRole, "spokenName"},
            {TroubleRole, "trouble"},
            {TroubleSymbolRole, "troubleSymbol"},
            {TroubleToneRole, "troubleTone"}};
}

QList<int> MessageListModel::rolesOfChange() const {
    return {SenderRole,   SubjectRole,         PreviewRole,   DateTextRole,
            SizeTextRole, AttachmentCountRole, SpokenNameRole};
}

bool MessageListModel::holdsQuery(std::string_view text) const {
    return screens::wholeText(text).contains(query_, Qt::CaseInsensitive);
}

// Empty where sender or subject hold the query, and without one.
QString MessageListModel::foundLine(const MailMessageRecord& message) const {
    if (query_.isEmpty() || holdsQuery(senderName(message).toStdString()) || holdsQuery(message.subject))
        return {};
    const auto named = [](const QString& name, std::string_view text) {
        return name + u'：' + screens::shownLine(text, previewLimit);
    };
    if (holdsQuery(message.sender)) return named(QStringLiteral("发件人"), message.sender);
    for (const MailAttachmentRecord& attachment : message.attachments) {
        if (holdsQuery(attachment.fileName)) return named(QStringLiteral("附件"), attachment.fileName);
    }
    if (holdsQuery(message.mailbox)) return named(QStringLiteral("邮箱"), message.mailbox);
    return holdsQuery(message.recipients) ? named(QStringLiteral("收件人"), message.recipients) : QString();
}

QString MessageListModel::previewLine(const MailMessageRecord& message) const {
    if (QString found = foundLine(message); !found.isEmpty()) return found;
    const auto newer = newPreviews_.find(message.id);
    return screens::shownLine(newer == newPreviews_.end() ? thirdLine(message) : newer->second.view(),
                              previewLimit);
}

bool MessageListModel::isArchived(const MailMessageRecord& message) const {
    return archivedIDs_->contains(message.id.view());
}

QString MessageListModel::spokenName(const MailMessageRecord& message) const {
    const auto state =
        title(isArchived(message) ? MigratedFilter::onlyMigrated : MigratedFilter::notMigrated);
    const MessageTrouble trouble = troubleOf(message);
    return QStringList{screens::shownLine(message.subject), senderName(message),
                       screens::wholeText(message.formattedDate()),
                       screens::wholeText(formatByteCount(message.messageSize)),
                       trouble.isPresent() ? trouble.label : screens::wholeText(state)}
        .join(u"，");
}

void MessageListModel::setArchivedIDs(std::shared_ptr<const SharedTextSet> ids) {
    archivedIDs_ = std::move(ids);
    notifyAllRows({ArchivedRole, SpokenNameRole});
}

void MessageListModel::setTroubles(MessageTroubles troubles) {
    troubles_ = std::move(troubles);
    notifyAllRows({TroubleRole, TroubleSymbolRole, TroubleToneRole, SpokenNameRole});
}

void MessageListModel::setQuery(const QString& query) {
    if (query_ == query) return;
    query_ = query;
    Q_EMIT queryChanged();
    notifyAllRows({PreviewRole});
}

void MessageListModel::addRowTexts(const RowTexts& texts, int first, int last) {
    for (const auto& [id, text] : texts) {
        if (!text.empty()) newPreviews_.try_emplace(id, text);
    }
    notifyRows(first, last, {PreviewRole});
}

void MessageListModel::setPreview(const SharedText& id, const SharedText& preview) {
    newPreviews_.insert_or_assign(id, preview);
    notifyAllRows({PreviewRole});
}

} // namespace corvane
