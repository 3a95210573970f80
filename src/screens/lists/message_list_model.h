// The rows of the mail list over a shared snapshot of messages. Rows come, go and change in place; texts are
// made when a row is asked for. Main thread.
//
// A view that wants to keep its place looks where it stands at `aboutToChange` and goes back at `changed`.
#pragma once

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include "records/mail_message_record.h"
#include "screens/lists/list_selection.h"
#include "screens/lists/row_changes.h"
#include "text/shared_text.h"

namespace corvane {

class MessageListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the mail list")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

  public:
    enum Role {
        SenderRole = Qt::UserRole + 1,
        SubjectRole,
        PreviewRole,
        DateTextRole,
        SizeTextRole,
        AttachmentCountRole,
        ArchivedRole,
        SpokenNameRole,
        SelectedRole, // the last: lists of messages with more to show go on from here
    };

    explicit MessageListModel(QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return static_cast<int>(messages_->size()); }

    [[nodiscard]] const SharedMessageList& messages() const { return messages_; }

    [[nodiscard]] ListSelection& selection() { return selection_; }

    [[nodiscard]] const ListSelection& selection() const { return selection_; }

    // Nothing for a row that isn't there.
    [[nodiscard]] const MailMessageRecord* message(int row) const;

    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& archivedIDs() const { return archivedIDs_; }

    [[nodiscard]] bool isArchived(const MailMessageRecord& message) const;

    // What a screen reader says: subject, sender, date, size, state.
    [[nodiscard]] QString spokenName(const MailMessageRecord& message) const;

    // `changes` lead from the present messages to the given ones. The selection follows.
    void apply(SharedMessageList messages, const RowChanges& changes);

    void setArchivedIDs(std::shared_ptr<const SharedTextSet> ids);

    // A text that was read again, for as long as the message is listed with the one in its record.
    void setPreview(const SharedText& id, const SharedText& preview);

    void forgetPreviews() { newPreviews_.clear(); }

    // The row in the present list of one in the list before the last change; what a view asks at `changed`.
    [[nodiscard]] Q_INVOKABLE int rowAfterChange(int earlierRow) const;

  Q_SIGNALS:
    void countChanged();
    void aboutToChange();
    void changed();

  protected:
    // Also while rows go or come.
    [[nodiscard]] const MailMessageRecord& shownAt(int row) const;

  private:
    // The list that is shown while rows go or come: some of its rows aren't there any more, or not yet.
    struct Passage {
        SharedMessageList list;
        std::vector<RowRun> hidden; // in order
        int hiddenRows = 0;
    };

    void removeRows(const std::vector<RowRun>& runs);
    void insertRows(SharedMessageList messages, const std::vector<RowRun>& runs);
    [[nodiscard]] QString previewLine(const MailMessageRecord& message) const;
    void tellChanged(int first, int last, const QList<int>& roles);

    SharedMessageList messages_ = std::make_shared<const MessageList>();
    std::shared_ptr<const SharedTextSet> archivedIDs_ = std::make_shared<const SharedTextSet>();
    std::unordered_map<SharedText, SharedText, TextHash, std::equal_to<>> newPreviews_; // by message id
    Passage passage_;
    std::vector<int> newRows_;
    ListSelection selection_;
};

} // namespace corvane
