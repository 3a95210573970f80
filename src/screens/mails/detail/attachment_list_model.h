// The attachments of the message that a detail shows, up to a number that can be laid out at a time. Another
// message is another list. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include "model/mail/opening/mail_attachments.h"
#include "records/mail_message_record.h"

namespace corvane {

class AttachmentListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a message")
    Q_PROPERTY(QString sumText READ sumText NOTIFY sumChanged)

  public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        SizeTextRole,
        SymbolRole,
        FoundRole, // it can be had from this machine
    };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Of the sizes that are known, and whether that is all; empty where none is.
    [[nodiscard]] QString sumText() const;

    // In the rows' order.
    [[nodiscard]] std::vector<MailAttachment> attachments() const;

    // Null for a row that isn't there, or whose attachment isn't on this machine.
    [[nodiscard]] const MailAttachment* found(int row) const;

    // Where it lies; empty until it was looked for it.
    [[nodiscard]] AttachmentPlace place(int row) const;

    [[nodiscard]] bool lacksSizes() const;

    // Where the attachments lie; without effect where the list is another one by now.
    void setPlaces(const std::vector<AttachmentPlace>& places);

    // Sizes that no record had.
    void setSizes(const std::vector<std::optional<std::int64_t>>& sizes);

    // Null for none.
    void setMessage(const MailMessageRecord* message);

  Q_SIGNALS:
    void sumChanged();

  private:
    struct Row {
        MailAttachmentRecord record;
        MailAttachment attachment;
        AttachmentPlace place{};
    };

    [[nodiscard]] bool isRow(int row) const { return row >= 0 && row < rowCount(); }

    [[nodiscard]] bool shows(const MailMessageRecord* message) const;
    void notifyAllRows(const QList<int>& roles);

    std::vector<Row> rows_;
    std::size_t count_ = 0; // also of those without a row
};

} // namespace corvane
