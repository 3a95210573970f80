// The attachments of the message that a detail shows, up to a number that can be laid out at a time. Another
// message is another list. Main thread.
#pragma once

#include <string>
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
    enum Role {
        NameRole = Qt::UserRole + 1,
        SizeTextRole,
        SymbolRole,
        FoundRole, // its file is on this machine
    };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Of the files, in the rows' order; empty for an attachment that Mail keeps in no file of its own.
    [[nodiscard]] std::vector<std::string> paths() const;

    // Empty for a row without a file.
    [[nodiscard]] std::string path(int row) const;

    // Which of `paths` are there; without effect where the list is another one by now.
    void setFound(std::vector<bool> found);

    void setAttachments(std::vector<MailAttachmentRecord> attachments);

  private:
    std::vector<MailAttachmentRecord> attachments_;
    std::vector<bool> found_; // empty until it was looked for them
};

} // namespace corvane
