// What the detail pane shows of one message, as texts that can be laid out whatever the message says. Main
// thread.
#pragma once

#include <optional>

#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include "records/mail_message_record.h"
#include "screens/mails/detail/attachment_list_model.h"

namespace corvane {

// False when a text stands in the place of the message's own.
bool holdsPreview(const MailMessageRecord& message);

class MessageDetail : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the mail list")
    Q_PROPERTY(bool hasMessage READ hasMessage NOTIFY changed)
    Q_PROPERTY(bool archived READ archived NOTIFY changed)
    Q_PROPERTY(QString subject READ subject NOTIFY changed)
    Q_PROPERTY(QString sender READ sender NOTIFY changed)
    Q_PROPERTY(QString recipients READ recipients NOTIFY changed)
    Q_PROPERTY(QString dateText READ dateText NOTIFY changed)
    Q_PROPERTY(QString place READ place NOTIFY changed)
    Q_PROPERTY(QString preview READ preview NOTIFY changed)
    Q_PROPERTY(bool hasPreview READ hasPreview NOTIFY changed)
    Q_PROPERTY(bool isDated READ isDated NOTIFY changed)
    Q_PROPERTY(bool hasMessageID READ hasMessageID NOTIFY changed)
    Q_PROPERTY(QString copiesTitle READ copiesTitle NOTIFY changed)
    Q_PROPERTY(QString copiesPlaces READ copiesPlaces NOTIFY changed)
    Q_PROPERTY(bool imported READ imported NOTIFY changed)
    Q_PROPERTY(QStringList files READ files NOTIFY changed)
    Q_PROPERTY(int attachmentCount READ attachmentCount NOTIFY changed)
    Q_PROPERTY(int attachmentsLeftOut READ attachmentsLeftOut NOTIFY changed)
    Q_PROPERTY(QString attachmentsSize READ attachmentsSize NOTIFY changed)
    Q_PROPERTY(corvane::AttachmentListModel* attachments READ attachments CONSTANT)

  public:
    using QObject::QObject;

    [[nodiscard]] const std::optional<MailMessageRecord>& message() const { return message_; }

    [[nodiscard]] bool hasMessage() const { return message_.has_value(); }

    [[nodiscard]] bool archived() const { return archived_; }

    [[nodiscard]] QString subject() const;
    [[nodiscard]] QString sender() const;

    // All of them; a list that is longer than anybody reads is cut.
    [[nodiscard]] QString recipients() const;
    [[nodiscard]] QString dateText() const;

    // Account, mailbox and size.
    [[nodiscard]] QString place() const;

    [[nodiscard]] QString preview() const;

    [[nodiscard]] bool hasPreview() const { return message_ && holdsPreview(*message_); }

    [[nodiscard]] bool isDated() const { return message_ && message_->date; }

    [[nodiscard]] bool hasMessageID() const { return message_ && message_->messageIdentifier; }

    // Empty when one file alone holds the message.
    [[nodiscard]] QString copiesTitle() const;

    // The mailboxes that hold the copies, each once.
    [[nodiscard]] QString copiesPlaces() const;

    [[nodiscard]] bool imported() const { return message_ && message_->importedMailbox(); }

    [[nodiscard]] QStringList files() const;

    [[nodiscard]] int attachmentCount() const;

    // Those that the list has no row for.
    [[nodiscard]] int attachmentsLeftOut() const { return attachmentCount() - attachments_.rowCount(); }

    // The sum of those that are known, and whether that is all.
    [[nodiscard]] QString attachmentsSize() const;

    [[nodiscard]] AttachmentListModel* attachments() { return &attachments_; }

    void show(const MailMessageRecord* message, bool archived);

    // Where this message is the shown one, a preview that is still waited for won't come.
    void setPreviewMissing(const QString& messageID, bool hasFile);

  Q_SIGNALS:
    void changed();
    // Another message, not only other facts about the same one.
    void messageChanged();

  private:
    std::optional<MailMessageRecord> message_;
    bool archived_ = false;
    QString missingPreview_; // what is said in the place of a preview that won't come
    AttachmentListModel attachments_;
};

} // namespace corvane
