// The filtered and sorted list, and the message in the detail pane. Main thread. The list is rebuilt by a
// background job on shared values and published in one step; nothing is listed while availability isn't
// known.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>

#include <QObject>

#include "model/mail/message_catalog.h"
#include "model/mail/model_filters.h"

namespace corvane {

// The rules of the list as values.
struct ListRules {
    std::string query; // trimmed and lower-cased
    std::int64_t minimumAttachmentCount = 0;
    std::set<std::int64_t> years;
    std::set<std::string> accountPrefixes;
    std::optional<std::int64_t> newestYear;
    MigratedFilter migrated = MigratedFilter::all;
    MailSortMode sortMode = MailSortMode::newest;
    bool ascending = false;

    static ListRules of(const ModelFilters& filters);
};

struct ListInput {
    SharedMessageList messages;
    std::shared_ptr<const SharedTextSet> locallyAvailableIDs;
    std::shared_ptr<const SharedTextSet> archivedMessageIDs;
    std::shared_ptr<const YearByID> yearByID;
};

// Filters and sorts; shares all texts with the input, and is the input's own list where that is the result.
// Null when stopped.
SharedMessageList makeVisibleMessages(const ListInput& input, const ListRules& rules,
                                      const std::stop_token& stop = {});

class VisibleMessages : public QObject {
    Q_OBJECT

  public:
    VisibleMessages(ModelContext& context, MessageCatalog& catalog, ModelFilters& filters,
                    QObject* parent = nullptr);

    [[nodiscard]] const SharedMessageList& visibleMessages() const { return visibleMessages_; }

    // The list is that of the present messages, not still empty for them.
    [[nodiscard]] bool isCurrent() const { return listedToken_ == catalog_.messagesToken(); }

    [[nodiscard]] const std::optional<std::string>& selectedMessageID() const { return selectedMessageID_; }

    void setSelectedMessageID(std::optional<std::string> id);

    void rebuildVisibleMessages();

    // Empties the list at once: a new generation of messages has come.
    void clear();

  Q_SIGNALS:
    void visibleMessagesChanged();
    void selectedMessageChanged();

  private:
    void publish(SharedMessageList list);

    ModelContext& context_;
    MessageCatalog& catalog_;
    ModelFilters& filters_;
    SharedMessageList visibleMessages_ = std::make_shared<const MessageList>();
    std::int64_t listedToken_ = -1;
    std::optional<std::string> selectedMessageID_;
    TaskSlot rebuildTask_;
};

} // namespace corvane
