// The text of the archived mail that is shown: read and cut in the background, folded and marked as it is
// wanted, or the reason why there is none. Texts of another mail are dropped. Main thread.
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

class ArchivedBody : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the archived mail")
    Q_PROPERTY(State state READ state NOTIFY changed)
    Q_PROPERTY(corvane::BodyNote note READ note NOTIFY changed)
    Q_PROPERTY(bool isCut READ isCut NOTIFY changed)
    Q_PROPERTY(bool canCollapse READ canCollapse NOTIFY changed)
    Q_PROPERTY(bool quotedExpanded READ quotedExpanded WRITE setQuotedExpanded NOTIFY changed)
    Q_PROPERTY(bool hidesRecipients READ hidesRecipients NOTIFY changed)

  public:
    // PlaceAway: not connected, and no disk that one could plug in. NotLooked: whether the file is there
    // isn't known.
    enum class State { Text, Loading, DiskAway, PlaceAway, Preparing, Lost, NotLooked, Unavailable };
    Q_ENUM(State)

    // `model` must outlive it.
    explicit ArchivedBody(CorvaneViewModel& model, QObject* parent = nullptr);

    // Another mail, or none; begins to read its text anew.
    void show(const std::optional<ArchivedEntry>& entry);

    [[nodiscard]] State state() const;
    [[nodiscard]] BodyNote note() const;

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

    // All of it, without what only the window shows by; empty as long as there is none.
    [[nodiscard]] QString copied() const;

  Q_SIGNALS:
    void changed();
    // After `changed`, when `pieces` are others.
    void piecesChanged();

  private:
    void load();
    void handleText(const std::optional<std::string>& text);
    void arrange();
    [[nodiscard]] bool isOnDisk() const;

    [[nodiscard]] const std::string& query() const { return model_.library().list.debouncedQuery(); }

    CorvaneViewModel& model_;
    std::optional<ArchivedEntry> entry_;
    std::shared_ptr<const std::string> text_; // null while it is being read; empty when there is none
    ShownBody body_;
    std::string arrangedQuery_; // for which `body_` was made, or is being made
    bool quotedExpanded_ = false;
    bool quotedRecipientsExpanded_ = false;
    TaskSlot arrangeTask_;
};

} // namespace corvane
