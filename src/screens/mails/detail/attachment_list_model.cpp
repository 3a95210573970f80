#include "screens/mails/detail/attachment_list_model.h"

#include <utility>

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
    case FoundRole: {
        const auto row = static_cast<std::size_t>(index.row());
        return row < found_.size() && found_[row];
    }
    default:
        return {};
    }
}

std::vector<std::string> AttachmentListModel::paths() const {
    std::vector<std::string> paths;
    for (int row = 0; row < rowCount(); ++row) paths.push_back(path(row));
    return paths;
}

std::string AttachmentListModel::path(int row) const {
    if (row < 0 || row >= rowCount()) return {};
    const auto& file = attachments_[static_cast<std::size_t>(row)].sourceFileURL;
    return file ? file->path().str() : std::string();
}

void AttachmentListModel::setFound(std::vector<bool> found) {
    if (found.size() != attachments_.size()) return;
    found_ = std::move(found);
    if (rowCount() > 0) Q_EMIT dataChanged(index(0), index(rowCount() - 1), {FoundRole});
}

QHash<int, QByteArray> AttachmentListModel::roleNames() const {
    return {{NameRole, "name"}, {SizeTextRole, "sizeText"}, {SymbolRole, "symbol"}, {FoundRole, "found"}};
}

void AttachmentListModel::setAttachments(std::vector<MailAttachmentRecord> attachments) {
    if (attachments.size() > mostAttachmentsShown) attachments.resize(mostAttachmentsShown);
    if (attachments_ == attachments) return;
    beginResetModel();
    attachments_ = std::move(attachments);
    found_.clear();
    endResetModel();
}

} // namespace corvane
