// The archived mail that the library's detail shows: its header, what is known of its file and its original,
// and its text (ArchivedBody). Main thread; what is read of another mail is dropped.
#pragma once

#include <optional>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/library/detail/archived_body.h"

namespace corvane {

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
    Q_PROPERTY(FileState fileState READ fileState NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(QString stateTone READ stateTone NOTIFY changed)
    Q_PROPERTY(QString stateSymbol READ stateSymbol NOTIFY changed)
    Q_PROPERTY(QString openTitle READ openTitle NOTIFY changed)
    Q_PROPERTY(QString openHelp READ openHelp NOTIFY changed)
    Q_PROPERTY(bool opening READ isOpening NOTIFY changed)
    Q_PROPERTY(bool retrieving READ isRetrieving NOTIFY changed)
    Q_PROPERTY(corvane::ArchivedBody* body READ body CONSTANT)

  public:
    enum class FileState { Here, Unknown, Unplugged, InCloud, Gone };
    Q_ENUM(FileState)

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
    [[nodiscard]] FileState fileState() const;

    // The one rule for all that is said of an archived file.
    static FileState stateOfFile(const LibraryLoader& library, const ArchivedEntry& entry);

    // Whether it is archived and its original still in Mail, as far as that is known.
    [[nodiscard]] QString stateText() const;
    [[nodiscard]] QString stateTone() const;
    [[nodiscard]] QString stateSymbol() const;

    [[nodiscard]] QString openTitle() const;
    [[nodiscard]] QString openHelp() const;
    [[nodiscard]] bool isOpening() const;

    // It is being opened, and its file is still with a cloud.
    [[nodiscard]] bool isRetrieving() const { return isOpening() && fileState() == FileState::InCloud; }

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
