// One message as the detail pane shows it: texts that can be laid out whatever the message says. A value,
// made when QML asks.
#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include "records/mail_message_record.h"

namespace corvane {

struct ShownMessage {
    Q_GADGET
    QML_VALUE_TYPE(shownMessage)
    Q_PROPERTY(bool archived MEMBER archived CONSTANT)
    Q_PROPERTY(bool hasFailed MEMBER hasFailed CONSTANT)
    Q_PROPERTY(bool isSetAside MEMBER isSetAside CONSTANT)
    Q_PROPERTY(QString proofText MEMBER proofText CONSTANT)
    Q_PROPERTY(QString troubleTone MEMBER troubleTone CONSTANT)
    Q_PROPERTY(QString troubleSymbol MEMBER troubleSymbol CONSTANT)
    Q_PROPERTY(QString troubleTitle MEMBER troubleTitle CONSTANT)
    Q_PROPERTY(QString troubleText MEMBER troubleText CONSTANT)
    Q_PROPERTY(bool hasPreview MEMBER hasPreview CONSTANT)
    Q_PROPERTY(bool isDated MEMBER isDated CONSTANT)
    Q_PROPERTY(bool hasMessageID MEMBER hasMessageID CONSTANT)
    Q_PROPERTY(bool imported MEMBER imported CONSTANT)
    Q_PROPERTY(QString subject MEMBER subject CONSTANT)
    Q_PROPERTY(QString sender MEMBER sender CONSTANT)
    Q_PROPERTY(QString recipients MEMBER recipients CONSTANT)
    Q_PROPERTY(QString dateText MEMBER dateText CONSTANT)
    Q_PROPERTY(QString place MEMBER place CONSTANT)
    Q_PROPERTY(QString preview MEMBER preview CONSTANT)
    Q_PROPERTY(QString copiesTitle MEMBER copiesTitle CONSTANT)
    Q_PROPERTY(QString copiesPlaces MEMBER copiesPlaces CONSTANT)
    Q_PROPERTY(QStringList files MEMBER files CONSTANT)
    Q_PROPERTY(int attachmentCount MEMBER attachmentCount CONSTANT)

  public:
    bool archived = false;
    bool hasFailed = false; // in the last run
    bool isSetAside = false;
    QString proofText; // from which day a proof is that rests on an archive which isn't connected; else empty
    QString troubleTone; // of a control
    QString troubleSymbol;
    QString troubleTitle; // empty for a message without trouble
    QString troubleText;
    bool hasPreview = false; // a text of the message's own
    bool isDated = false;
    bool hasMessageID = false;
    bool imported = false; // from a mailbox that was imported into Mail
    QString subject;
    QString sender;
    QString recipients; // all of them; a list that is longer than anybody reads is cut
    QString dateText;
    QString place;        // account, mailbox and size
    QString preview;      // or what is said in its place
    QString copiesTitle;  // empty when one file alone holds the message
    QString copiesPlaces; // the mailboxes that hold the copies, each once
    QStringList files;
    int attachmentCount = 0;

    // `missingPreview` is said in the place of a preview that won't come; empty while it may.
    static ShownMessage of(const MailMessageRecord& message, bool archived, const QString& missingPreview);
};

} // namespace corvane
