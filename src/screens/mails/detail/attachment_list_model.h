// The attachments of the message that a detail shows, up to a number that can be laid out at a time. Another
// message is another list. Main thread.
#pragma once

#include <vector>

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include "records/mail_message_record.h"

namespace corvane {

// Messages that people write have fewer.
inline constexpr std::size_t mostAttachmentsShown = 100;

class AttachmentListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a message")

  public:
    enum Role { NameRole = Qt::UserRole + 1, SizeTextRole, SymbolRole };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void setAttachments(std::vector<MailAttachmentRecord> attachments);

  private:
    std::vector<MailAttachmentRecord> attachments_;
};

} // namespace corvane
