// The filtered and sorted list, and the message in the detail pane. Main thread. The list is rebuilt by a
// background job on shared values and published in one step; nothing is listed while availability isn't
// known.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <QObject>

#include "listing/visible_list.h"
#include "model/mail/messages/message_catalog.h"
#include "model/mail/messages/model_filters.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class VisibleMessages : public QObject {
    Q_OBJECT

  public:
    VisibleMessages(ModelContext& context, const MessageCatalog& catalog, const ModelFilters& filters,
                    QObject* parent = nullptr);

    [[nodiscard]] const SharedMessageList& visibleMessages() const { return visibleMessages_; }

    // The list is that of the present messages, not still empty for them.
    [[nodiscard]] bool isCurrent() const { return listedOf_.lock() == catalog_.state()->set; }

    [[nodiscard]] const std::optional<std::string>& selectedMessageID() const { return selectedMessageID_; }

    // Whether or not it is listed: the next list moves a selection that it doesn't hold to its first message.
    void setSelectedMessageID(std::optional<std::string> id);

    // What the list of the present messages is made of, and by which rules.
    [[nodiscard]] ListInput listInput() const;
    [[nodiscard]] ListRules listRules() const;

    // Makes the list of the present messages and filters in the background; `visibleMessagesChanged` follows
    // unless another rebuild comes first.
    void rebuildVisibleMessages();

    // Empties the list at once: a new generation of messages has come.
    void clear();

  Q_SIGNALS:
    void visibleMessagesChanged();
    void selectedMessageChanged();

  private:
    void publish(SharedMessageList list, bool isSelectedListed);

    const MessageCatalog& catalog_;
    const ModelFilters& filters_;
    SharedMessageList visibleMessages_ = std::make_shared<const MessageList>();
    std::weak_ptr<const MessageSet> listedOf_; // the generation; empty: cleared
    std::optional<std::string> selectedMessageID_;
    TaskSlot rebuildTask_;
};

} // namespace corvane
