#include "screens/lists/message_list_model.h"

#include <algorithm>

#include "records/formatters.h"
#include "records/model_enums.h"
#include "screens/mails/detail/message_detail.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

constexpr qsizetype previewLimit = 120;

const QList<int> shownRoles = {MessageListModel::SenderRole,    MessageListModel::SubjectRole,
                               MessageListModel::PreviewRole,   MessageListModel::DateTextRole,
                               MessageListModel::SizeTextRole,  MessageListModel::AttachmentCountRole,
                               MessageListModel::SpokenNameRole};

// Until a text was read, where the message lies says more than that it wasn't.
std::string_view thirdLine(const MailMessageRecord& message) {
    return holdsPreview(message) ? message.preview.view() : message.mailbox.view();
}

QString senderName(const MailMessageRecord& message) {
    return screens::shownSender(message.sender);
}

} // namespace

MessageListModel::MessageListModel(QObject* parent)
  : QAbstractListModel(parent) {
    connect(&selection_, &ListSelection::selectionChanged, this,
            [this](int first, int last) { tellChanged(first, last, {SelectedRole}); });
}

int MessageListModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid()) return 0;
    return passage_.list ? static_cast<int>(passage_.list->size()) - passage_.hiddenRows : count();
}

const MailMessageRecord& MessageListModel::shownAt(int row) const {
    if (!passage_.list) return (*messages_)[static_cast<std::size_t>(row)];
    for (const RowRun& run : passage_.hidden) {
        if (run.first > row) break;
        row += run.count;
    }
    return (*passage_.list)[static_cast<std::size_t>(row)];
}

QVariant MessageListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const MailMessageRecord& message = shownAt(index.row());
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
    case SelectedRole:
        return selection_.isSelected(index.row());
    case SpokenNameRole:
        return spokenName(message);
    default:
        return {};
    }
}

QHash<int, QByteArray> MessageListModel::roleNames() const {
    return {{SenderRole, "sender"},     {SubjectRole, "subject"},   {PreviewRole, "preview"},
            {DateTextRole, "dateText"}, {SizeTextRole, "sizeText"}, {AttachmentCountRole, "attachmentCount"},
            {ArchivedRole, "archived"}, {SelectedRole, "selected"}, {SpokenNameRole, "spokenName"}};
}

QString MessageListModel::previewLine(const MailMessageRecord& message) const {
    const auto newer = newPreviews_.find(message.id);
    return screens::shownLine(newer == newPreviews_.end() ? thirdLine(message) : newer->second.view(),
                              previewLimit);
}

const MailMessageRecord* MessageListModel::message(int row) const {
    return row >= 0 && row < count() ? &(*messages_)[static_cast<std::size_t>(row)] : nullptr;
}

bool MessageListModel::isArchived(const MailMessageRecord& message) const {
    return archivedIDs_->contains(message.id.view());
}

QString MessageListModel::spokenName(const MailMessageRecord& message) const {
    const auto state =
        title(isArchived(message) ? MigratedFilter::onlyMigrated : MigratedFilter::notMigrated);
    return QStringList{screens::shownLine(message.subject), senderName(message),
                       screens::wholeText(message.formattedDate()),
                       screens::wholeText(formatByteCount(message.messageSize)), screens::wholeText(state)}
        .join(u"，");
}

void MessageListModel::apply(SharedMessageList messages, const RowChanges& changes) {
    const int earlierCount = count();
    Q_EMIT aboutToChange();
    newRows_ = changes.newRows;
    if (changes.isReset) {
        beginResetModel();
        messages_ = std::move(messages);
        endResetModel();
    } else {
        removeRows(changes.removed);
        insertRows(std::move(messages), changes.inserted);
        for (const RowRun& run : changes.changed) {
            tellChanged(run.first, run.first + run.count - 1, shownRoles);
        }
    }
    selection_.remap(newRows_, count());
    // What a view asked for while rows went and came was told by the rows of before.
    tellChanged(0, count() - 1, {SelectedRole});
    Q_EMIT changed();
    newRows_ = {};
    if (earlierCount != count()) Q_EMIT countChanged();
}

// From the end on, so that the rows named still stand where they are named.
void MessageListModel::removeRows(const std::vector<RowRun>& runs) {
    passage_ = {messages_, {}, 0};
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        beginRemoveRows({}, run->first, run->first + run->count - 1);
        passage_.hidden.insert(passage_.hidden.begin(), *run);
        passage_.hiddenRows += run->count;
        endRemoveRows();
    }
}

void MessageListModel::insertRows(SharedMessageList messages, const std::vector<RowRun>& runs) {
    messages_ = std::move(messages);
    passage_ = {messages_, runs, 0};
    for (const RowRun& run : runs) passage_.hiddenRows += run.count;
    for (const RowRun& run : runs) {
        beginInsertRows({}, run.first, run.first + run.count - 1);
        passage_.hidden.erase(passage_.hidden.begin());
        passage_.hiddenRows -= run.count;
        endInsertRows();
    }
    passage_ = {};
}

void MessageListModel::tellChanged(int first, int last, const QList<int>& roles) {
    last = std::min(last, rowCount() - 1);
    if (first <= last) Q_EMIT dataChanged(index(first), index(last), roles);
}

void MessageListModel::setArchivedIDs(std::shared_ptr<const SharedTextSet> ids) {
    archivedIDs_ = std::move(ids);
    tellChanged(0, count() - 1, {ArchivedRole, SpokenNameRole});
}

void MessageListModel::setPreview(const SharedText& id, const SharedText& preview) {
    newPreviews_.insert_or_assign(id, preview);
    tellChanged(0, count() - 1, {PreviewRole});
}

int MessageListModel::rowAfterChange(int earlierRow) const {
    return earlierRow >= 0 && earlierRow < static_cast<int>(newRows_.size())
               ? newRows_[static_cast<std::size_t>(earlierRow)]
               : -1;
}

} // namespace corvane
