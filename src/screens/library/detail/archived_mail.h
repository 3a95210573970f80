// The archived mail that the library's detail shows: its header, what is known of its file and its original,
// and its text (ArchivedBody). Main thread; what is read of another mail is dropped.
#pragma once

#include <optional>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/library/detail/archived_body.h"
#include "screens/library/detail/archived_file_state.h"

namespace corvane {

// Whether a mail is archived and its original still in Mail, as far as that is known.
struct ArchivedMailState {
    Q_GADGET
    QML_VALUE_TYPE(archivedMailState)
    Q_PROPERTY(QString text MEMBER text CONSTANT)
    Q_PROPERTY(QString tone MEMBER tone CONSTANT)
    Q_PROPERTY(QString symbol MEMBER symbol CONSTANT)

  public:
    QString text;
    QString tone; // as controls have them
    QString symbol;
};

class ArchivedMail : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the library")
    Q_PROPERTY(bool hasMail READ hasMail NOTIFY changed)
    Q_PROPERTY(QString subject READ subject NOTIFY changed)
    Q_PROPERTY(QString sender READ sender NOTIFY changed)
    Q_PROPERTY(QString recipients READ recipients NOTIFY changed)
    Q_PROPERTY(QString ccRecipients READ ccRecipients NOTIFY changed)
    Q_PROPERTY(QString dateText READ dateText NOTIFY changed)
    Q_PROPERTY(QString sizeText READ sizeText NOTIFY changed)
    Q_PROPERTY(QString placeName READ placeName NOTIFY changed)
    Q_PROPERTY(QString placeSymbol READ placeSymbol NOTIFY changed)
    Q_PROPERTY(corvane::archived_file::State fileState READ fileState NOTIFY changed)
    Q_PROPERTY(corvane::ArchivedMailState state READ state NOTIFY changed)
    Q_PROPERTY(QString openTitle READ openTitle NOTIFY changed)
    Q_PROPERTY(QString openHelp READ openHelp NOTIFY changed)
    Q_PROPERTY(bool opening READ isOpening NOTIFY changed)
    Q_PROPERTY(bool retrieving READ isRetrieving NOTIFY changed)
    Q_PROPERTY(corvane::ArchivedBody* body READ body CONSTANT)

  public:
    // `model` must outlive it.
    explicit ArchivedMail(CorvaneViewModel& model, QObject* parent = nullptr);

    // Null for none. `status` is what is known of its original.
    void show(const ArchivedEntry* entry, ArchivedOriginalPresenceStatus status);

    [[nodiscard]] const std::optional<ArchivedEntry>& entry() const { return entry_; }

    [[nodiscard]] bool hasMail() const { return entry_.has_value(); }

    [[nodiscard]] QString subject() const;
    [[nodiscard]] QString sender() const;
    [[nodiscard]] QString recipients() const;

    // Empty as long as it isn't known.
    [[nodiscard]] const QString& ccRecipients() const { return ccRecipients_; }

    [[nodiscard]] QString dateText() const;
    [[nodiscard]] QString sizeText() const;
    [[nodiscard]] QString placeName() const;
    [[nodiscard]] QString placeSymbol() const;
    // Unknown without a mail.
    [[nodiscard]] archived_file::State fileState() const;
    [[nodiscard]] ArchivedMailState state() const;

    [[nodiscard]] QString openTitle() const;
    [[nodiscard]] QString openHelp() const;
    [[nodiscard]] bool isOpening() const;

    // It is being opened, and its file is still with a cloud.
    [[nodiscard]] bool isRetrieving() const {
        return isOpening() && fileState() == archived_file::State::InCloud;
    }

    [[nodiscard]] ArchivedBody* body() { return &body_; }

    // The whole mail as text: header and body, without what belongs to the window.
    [[nodiscard]] QString wholeMail() const;

  Q_SIGNALS:
    void changed();
    // Another mail, not only other facts about the same one.
    void mailChanged();

  private:
    void loadRecipients();
    [[nodiscard]] const ArchiveLocation* place() const;

    CorvaneViewModel& model_;
    std::optional<ArchivedEntry> entry_;
    ArchivedOriginalPresenceStatus status_ = ArchivedOriginalPresenceStatus::unknown;
    QString ccRecipients_;
    ArchivedBody body_;
};

} // namespace corvane
