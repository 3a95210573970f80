#include "model/mail/visible_messages.h"

#include <algorithm>

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
    rules.sortMode = filters.sortMode();
    rules.ascending = filters.sortAscending();
    return rules;
}

} // namespace

VisibleMessages::VisibleMessages(ModelContext& context, MessageCatalog& catalog, ModelFilters& filters,
                                 QObject* parent)
  : QObject(parent)
  , context_(context)
  , catalog_(catalog)
  , filters_(filters)
  , rebuildTask_(context.tasks) {}

void VisibleMessages::setSelectedMessageID(std::optional<std::string> id) {
    if (selectedMessageID_ == id) return;
    selectedMessageID_ = std::move(id);
    Q_EMIT selectedMessageChanged();
}

void VisibleMessages::rebuildVisibleMessages() {
    if (!catalog_.isAvailabilityKnown()) catalog_.refreshAvailabilityCacheAsync(false);

    struct Job {
        ListInput input;
        ListRules rules;
    };

    rebuildTask_.start(
        TaskPriority::userInitiated,
        Job{{catalog_.messages(), catalog_.locallyAvailableIDs(), catalog_.archivedMessageIDs(),
             catalog_.messageYearByID()},
            listRulesOf(filters_)},
        [](const Job& job, const TaskHandle& task) {
            return makeVisibleMessages(job.input, job.rules, task.stopToken());
        },
        [this](SharedMessageList list) { publish(std::move(list)); });
}

void VisibleMessages::clear() {
    rebuildTask_.cancel();
    listedToken_ = -1;
    visibleMessages_ = std::make_shared<const MessageList>();
    Q_EMIT visibleMessagesChanged();
}

void VisibleMessages::publish(SharedMessageList list) {
    visibleMessages_ = std::move(list);
    listedToken_ = catalog_.messagesToken();
    Q_EMIT visibleMessagesChanged();
    const bool selectionStays =
        selectedMessageID_ &&
        std::any_of(visibleMessages_->begin(), visibleMessages_->end(),
                    [&](const auto& message) { return message.id == *selectedMessageID_; });
    if (selectionStays) return;
    setSelectedMessageID(visibleMessages_->empty() ? std::nullopt
                                                   : std::optional(visibleMessages_->front().id.str()));
}

} // namespace corvane
