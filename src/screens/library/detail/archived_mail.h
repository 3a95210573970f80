// The archived mail that the library's detail shows: its header, what is known of its file and its original,
// its text. Main thread; texts are read and cut in the background, and those of another mail are dropped.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/library/detail/body_pieces.h"

namespace corvane {

// What stands in the place of a text.
struct BodyNote {
    Q_GADGET
    QML_VALUE_TYPE(bodyNote)
    Q_PROPERTY(QString symbol READ symbolText CONSTANT)
    Q_PROPERTY(QString title READ titleText CONSTANT)
    Q_PROPERTY(QString line READ lineText CONSTANT)

  public:
    const char* symbol = "";
    const char* title = "";
    const char* line = "";

    [[nodiscard]] QString symbolText() const { return QString::fromUtf8(symbol); }

    [[nodiscard]] QString titleText() const { return QString::fromUtf8(title); }

    [[nodiscard]] QString lineText() const { return QString::fromUtf8(line); }
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
    Q_PROPERTY(FileState fileState READ fileState NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(QString stateTone READ stateTone NOTIFY changed)
    Q_PROPERTY(QString stateSymbol READ stateSymbol NOTIFY changed)
    Q_PROPERTY(QString openTitle READ openTitle NOTIFY changed)
    Q_PROPERTY(QString openHelp READ openHelp NOTIFY changed)
    Q_PROPERTY(bool opening READ isOpening NOTIFY changed)
    Q_PROPERTY(bool retrieving READ isRetrieving NOTIFY changed)
    Q_PROPERTY(BodyState bodyState READ bodyState NOTIFY bodyChanged)
    Q_PROPERTY(corvane::BodyNote bodyNote READ bodyNote NOTIFY bodyChanged)
    Q_PROPERTY(bool isCut READ isCut NOTIFY bodyChanged)
    Q_PROPERTY(bool canCollapse READ canCollapse NOTIFY bodyChanged)
    Q_PROPERTY(bool quotedExpanded READ quotedExpanded WRITE setQuotedExpanded NOTIFY bodyChanged)
    Q_PROPERTY(bool hidesRecipients READ hidesRecipients NOTIFY bodyChanged)

  public:
    enum class FileState { Here, Unknown, Unplugged, InCloud, Gone };
    Q_ENUM(FileState)
    // PlaceAway: not connected, and no disk that one could plug in. NotLooked: whether the file is there
    // isn't known.
    enum class BodyState { Text, Loading, DiskAway, PlaceAway, Preparing, Lost, NotLooked, Unavailable };
    Q_ENUM(BodyState)

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

    [[nodiscard]] BodyState bodyState() const;
    [[nodiscard]] BodyNote bodyNote() const;

    [[nodiscard]] const std::vector<BodyPiece>& pieces() const { return body_.pieces; }

    [[nodiscard]] bool isCut() const { return body_.isCut; }

    [[nodiscard]] bool canCollapse() const { return body_.parts.canCollapse(query()); }

    [[nodiscard]] bool quotedExpanded() const { return quotedExpanded_; }

    void setQuotedExpanded(bool expanded);

    // The history is shown with long lists of recipients cut.
    [[nodiscard]] bool hidesRecipients() const;

    Q_INVOKABLE void showAllRecipients();

    // Fills the index of texts, where this one isn't in.
    Q_INVOKABLE void prepareTexts();

    // The whole mail as text: header and body, without what belongs to the window.
    [[nodiscard]] QString wholeMail() const;

  Q_SIGNALS:
    void changed();
    void bodyChanged();
    // Another mail, not only other facts about the same one.
    void mailChanged();

  private:
    void load();
    void handleText(const std::optional<std::string>& text);
    void arrange();
    [[nodiscard]] bool isOnDisk() const;

    [[nodiscard]] const std::string& query() const { return model_.library().list.debouncedQuery(); }

    [[nodiscard]] const ArchiveLocation* place() const;

    CorvaneViewModel& model_;
    std::optional<ArchivedEntry> entry_;
    ArchivedOriginalPresenceStatus status_ = ArchivedOriginalPresenceStatus::unknown;
    QString ccRecipients_;
    std::shared_ptr<const std::string> text_; // null while it is being read; empty when there is none
    ShownBody body_;
    bool quotedExpanded_ = false;
    bool quotedRecipientsExpanded_ = false;
    TaskSlot arrangeTask_;
};

} // namespace corvane
