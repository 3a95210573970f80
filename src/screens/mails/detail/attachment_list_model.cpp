#include "screens/mails/detail/attachment_list_model.h"

#include "screens/mails/detail/attachment_symbol.h"
#include "screens/texts/shown_text.h"

namespace corvane {

int AttachmentListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(attachments_.size());
}

QVariant AttachmentListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const MailAttachmentRecord& attachment = attachments_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case NameRole:
        return screens::shownLine(attachment.fileName);
    case SizeTextRole:
        return screens::wholeText(attachment.displaySize());
    case SymbolRole:
        return screens::wholeText(attachmentSymbol(attachment.fileName));
    default:
        return {};
    }
}

QHash<int, QByteArray> AttachmentListModel::roleNames() const {
    return {{NameRole, "name"}, {SizeTextRole, "sizeText"}, {SymbolRole, "symbol"}};
}

void AttachmentListModel::setAttachments(std::vector<MailAttachmentRecord> attachments) {
    if (attachments.size() > mostAttachmentsShown) attachments.resize(mostAttachmentsShown);
    if (attachments_ == attachments) return;
    beginResetModel();
    attachments_ = std::move(attachments);
    endResetModel();
}

} // namespace corvane
