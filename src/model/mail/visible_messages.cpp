#include "model/mail/visible_messages.h"

#include <algorithm>
#include <utility>

#include "text/case.h"
#include "text/trim.h"

namespace corvane {

namespace {

ListRules listRulesOf(const ModelFilters& filters) {
    ListRules rules;
    rules.query = text::lowercased(text::trimWhitespaceAndNewlines(filters.searchText()));
    rules.minimumAttachmentCount = filters.minimumAttachmentCount();
    rules.years = filters.filterYears();
    rules.accountPrefixes = filters.filterAccountPrefixes();
    if (filters.onlyBeforeCutoff()) rules.newestYear = filters.yearCutoff();
    rules.migrated = filters.migratedFilter();
    rules.onlyTroubled = filters.onlyTroubled();
    rules.sortMode = filters.sortMode();
    rules.ascending = filters.sortAscending();
    return rules;
}

struct ListJob {
    ListInput input;
    ListRules rules;
    std::optional<std::string> selectedID;
};

struct Listed {
    SharedMessageList messages;
    bool holdsSelected = false;
};

bool holds(const MessageList& messages, const std::optional<std::string>& id) {
    return id && std::ranges::any_of(messages, [&](const auto& message) { return message.id == *id; });
}

// Absent when cancelled.
std::optional<Listed> makeList(const ListJob& job, const TaskHandle& task) {
    SharedMessageList messages = makeVisibleMessages(job.input, job.rules, task.stopToken());
    if (!messages) return std::nullopt;
    const bool holdsSelected = holds(*messages, job.selectedID);
    return Listed{std::move(messages), holdsSelected};
}

} // namespace

VisibleMessages::VisibleMessages(ModelContext& context, const MessageCatalog& catalog,
                                 const ModelFilters& filters, QObject* parent)
  : QObject(parent)
  , catalog_(catalog)
  , filters_(filters)
  , rebuildTask_(context.tasks) {}

void VisibleMessages::setSelectedMessageID(std::optional<std::string> id) {
    if (selectedMessageID_ == id) return;
    selectedMessageID_ = std::move(id);
    Q_EMIT selectedMessageChanged();
}

void VisibleMessages::rebuildVisibleMessages() {
    rebuildTask_.start(
        TaskPriority::userInitiated,
        ListJob{{catalog_.messages(), catalog_.locallyAvailableIDs(), catalog_.archivedMessageIDs(),
                 catalog_.messageYearByID(), catalog_.troubledIDs()},
                listRulesOf(filters_),
                selectedMessageID_},
        &makeList, [this, asked = selectedMessageID_](Listed listed) {
            // Another message may have been selected meanwhile.
            const bool isListed = selectedMessageID_ == asked ? listed.holdsSelected
                                                              : holds(*listed.messages, selectedMessageID_);
            publish(std::move(listed.messages), isListed);
        });
}

void VisibleMessages::clear() {
    rebuildTask_.cancel();
    listedOf_.reset();
    visibleMessages_ = std::make_shared<const MessageList>();
    Q_EMIT visibleMessagesChanged();
}

void VisibleMessages::publish(SharedMessageList list, bool isSelectedListed) {
    visibleMessages_ = std::move(list);
    listedOf_ = catalog_.state()->set;
    Q_EMIT visibleMessagesChanged();
    if (isSelectedListed) return;
    setSelectedMessageID(visibleMessages_->empty() ? std::nullopt
                                                   : std::optional(visibleMessages_->front().id.str()));
}

} // namespace corvane
