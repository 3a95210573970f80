#include "screens/mails/detail/attachment_list_model.h"

#include <algorithm>
#include <utility>

#include "records/texts/formatters.h"
#include "screens/texts/attachment_symbol.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

// Messages that people write have fewer.
constexpr std::size_t mostAttachmentsShown = 100;

} // namespace

int AttachmentListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant AttachmentListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case NameRole:
        return screens::shownLine(row.record.fileName);
    case SizeTextRole:
        return screens::wholeText(row.record.displaySize());
    case SymbolRole:
        return screens::wholeText(attachmentSymbol(row.record.fileName));
    case FoundRole:
        return !row.place.path.empty();
    default:
        return {};
    }
}

QHash<int, QByteArray> AttachmentListModel::roleNames() const {
    return {{NameRole, "name"}, {SizeTextRole, "sizeText"}, {SymbolRole, "symbol"}, {FoundRole, "found"}};
}

QString AttachmentListModel::sumText() const {
    std::int64_t known = 0;
    for (const Row& row : rows_) known += row.record.estimatedSize.value_or(0);
    const bool isWhole = !lacksSizes() && count_ == rows_.size();
    if (count_ == 0 || (known == 0 && !isWhole)) return {};
    const QString sum = screens::wholeText(formatByteCount(known));
    return isWhole ? sum : QStringLiteral("已知 ") + sum;
}

std::vector<MailAttachment> AttachmentListModel::attachments() const {
    std::vector<MailAttachment> attachments;
    for (const Row& row : rows_) attachments.push_back(row.attachment);
    return attachments;
}

const MailAttachment* AttachmentListModel::found(int row) const {
    return place(row).path.empty() ? nullptr : &rows_[static_cast<std::size_t>(row)].attachment;
}

AttachmentPlace AttachmentListModel::place(int row) const {
    return isRow(row) ? rows_[static_cast<std::size_t>(row)].place : AttachmentPlace();
}

bool AttachmentListModel::lacksSizes() const {
    return std::ranges::any_of(rows_, [](const Row& row) { return !row.record.estimatedSize; });
}

void AttachmentListModel::setPlaces(const std::vector<AttachmentPlace>& places) {
    if (places.size() != rows_.size()) return;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        rows_[row].place = places[row];
        if (places[row].bytes) rows_[row].record.estimatedSize = places[row].bytes;
    }
    notifyAllRows({FoundRole, SizeTextRole});
    Q_EMIT sumChanged();
}

void AttachmentListModel::setSizes(const std::vector<std::optional<std::int64_t>>& sizes) {
    if (sizes.size() != rows_.size()) return;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        if (!rows_[row].record.estimatedSize) rows_[row].record.estimatedSize = sizes[row];
    }
    notifyAllRows({SizeTextRole});
    Q_EMIT sumChanged();
}

void AttachmentListModel::notifyAllRows(const QList<int>& roles) {
    if (rowCount() > 0) Q_EMIT dataChanged(index(0), index(rowCount() - 1), roles);
}

// What was found out about the attachments meanwhile stays theirs.
bool AttachmentListModel::shows(const MailMessageRecord* message) const {
    if (message == nullptr) return count_ == 0;
    if (message->attachments.size() != count_) return false;
    const auto wanted = mailAttachments(*message, mostAttachmentsShown);
    return std::ranges::equal(rows_, wanted, {}, &Row::attachment);
}

void AttachmentListModel::setMessage(const MailMessageRecord* message) {
    if (shows(message)) return;
    beginResetModel();
    rows_.clear();
    count_ = message == nullptr ? 0 : message->attachments.size();
    if (message != nullptr) {
        for (MailAttachment& attachment : mailAttachments(*message, mostAttachmentsShown))
            rows_.push_back({message->attachments[rows_.size()], std::move(attachment)});
    }
    endResetModel();
    Q_EMIT sumChanged();
}

} // namespace corvane
