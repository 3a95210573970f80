// The rows of a list of messages over a shared snapshot, with what is known of them beside the records: which
// are archived, and previews that were read again. Main thread.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "records/mail_message_record.h"
#include "screens/lists/record_list_model.h"
#include "screens/texts/message_trouble.h"
#include "text/shared_text.h"

namespace corvane {

struct MessageID {
    const SharedText& operator()(const MailMessageRecord& message) const { return message.id; }
};

// Compares what a row shows of a message, not all of it. Any thread.
RowChanges messageRowChanges(const MessageList& before, const MessageList& after,
                             const RowChangeRules& rules = largeListRules);

class MessageListModel : public RecordListModel<MailMessageRecord, MessageID> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a screen")
    Q_PROPERTY(QString query READ query NOTIFY queryChanged)

  public:
    enum Role {
        SenderRole = FirstRole,
        SubjectRole,
        PreviewRole,
        DateTextRole,
        SizeTextRole,
        AttachmentCountRole,
        ArchivedRole,
        TroubleRole,
        TroubleSymbolRole,
        TroubleToneRole,
        SpokenNameRole,
        FirstRoleOfDerived, // lists of messages with more to show go on from here
    };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& archivedIDs() const { return archivedIDs_; }

    [[nodiscard]] bool isArchived(const MailMessageRecord& message) const;

    // What a screen reader says: subject, sender, date, size, state.
    [[nodiscard]] QString spokenName(const MailMessageRecord& message) const;

    void setArchivedIDs(std::shared_ptr<const SharedTextSet> ids);

    // Why messages aren't archived: shown in the place of their text.
    void setTroubles(MessageTroubles troubles);

    [[nodiscard]] MessageTrouble troubleOf(const MailMessageRecord& message) const {
        return troubles_.of(message);
    }

    // What the list was searched for, lower-cased; empty without a search. Where neither sender nor subject
    // hold it, the third line says which other part of the message does.
    [[nodiscard]] const QString& query() const { return query_; }

    void setQuery(const QString& query);

    // A text that was read again, for as long as the message is listed with the one in its record.
    void setPreview(const SharedText& id, const SharedText& preview);

    // Texts that were read for the rows from `first` to `last` alone, by message id. A text that was read
    // again goes before them.
    using RowTexts = std::vector<std::pair<SharedText, SharedText>>;
    void addRowTexts(const RowTexts& texts, int first, int last);

    void forgetPreviews() { newPreviews_.clear(); }

  Q_SIGNALS:
    void queryChanged();

  protected:
    [[nodiscard]] QVariant value(const MailMessageRecord& message, int role) const override;
    [[nodiscard]] QList<int> rolesOfChange() const override;

  private:
    [[nodiscard]] QString previewLine(const MailMessageRecord& message) const;
    [[nodiscard]] QString foundLine(const MailMessageRecord& message) const;
    [[nodiscard]] bool holdsQuery(std::string_view text) const;

    std::shared_ptr<const SharedTextSet> archivedIDs_ = std::make_shared<const SharedTextSet>();
    MessageTroubles troubles_;
    QString query_;
    std::unordered_map<SharedText, SharedText, TextHash, std::equal_to<>> newPreviews_; // by message id
};

} // namespace corvane
