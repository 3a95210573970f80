// The message that the detail pane shows, with its attachments. Main thread.
#pragma once

#include <optional>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "records/mail_message_record.h"
#include "screens/mails/detail/attachment_list_model.h"
#include "screens/mails/detail/shown_message.h"
#include "screens/texts/message_trouble.h"

namespace corvane {

class MessageDetail : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the mail list")
    Q_PROPERTY(bool hasMessage READ hasMessage NOTIFY changed)
    Q_PROPERTY(corvane::ShownMessage shown READ shown NOTIFY changed)
    Q_PROPERTY(int attachmentsLeftOut READ attachmentsLeftOut NOTIFY changed)
    Q_PROPERTY(corvane::AttachmentListModel* attachments READ attachments CONSTANT)

  public:
    using QObject::QObject;

    [[nodiscard]] bool hasMessage() const { return message_.has_value(); }

    // Empty without a message.
    [[nodiscard]] const ShownMessage& shown() const { return shown_; }

    // Those that the list has no row for.
    [[nodiscard]] int attachmentsLeftOut() const { return shown_.attachmentCount - attachments_.rowCount(); }

    [[nodiscard]] AttachmentListModel* attachments() { return &attachments_; }

    // What is known of a message beside its record.
    struct Knowledge {
        bool archived = false;
        MessageTrouble trouble{};
        QString proofText{}; // of a proof that rests on an archive which isn't connected; else empty

        friend bool operator==(const Knowledge&, const Knowledge&) = default;
    };

    // Null for none.
    void show(const MailMessageRecord* message, Knowledge knowledge);

    // Where this message is the shown one, a preview that is still waited for won't come.
    void setPreviewMissing(const QString& messageID, bool hasFile);

  Q_SIGNALS:
    void changed();
    // Another message, not only other facts about the same one.
    void messageChanged();

  private:
    void update();

    std::optional<MailMessageRecord> message_;
    Knowledge knowledge_;
    QString missingPreview_; // what is said in the place of a preview that won't come
    ShownMessage shown_;
    AttachmentListModel attachments_;
};

} // namespace corvane
