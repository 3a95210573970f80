#include "model/mail/messages/visible_messages.h"

#include <algorithm>
#include <utility>

#include "text/case.h"
#include "text/trim.h"

namespace corvane {

namespace {

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

ListInput VisibleMessages::listInput() const {
    return {catalog_.messages(), catalog_.locallyAvailableIDs(), catalog_.archivedMessageIDs(),
            catalog_.messageYearByID(), catalog_.availability().troubledIDs};
}

ListRules VisibleMessages::listRules() const {
    ListRules rules;
    rules.query = text::lowercased(text::trimWhitespaceAndNewlines(filters_.list().searchText));
    rules.minimumAttachmentCount = filters_.list().minimumAttachmentCount;
    rules.years = filters_.list().filterYears;
    rules.accountPrefixes = filters_.filterAccountPrefixes();
    if (filters_.list().onlyBeforeCutoff) rules.newestYear = filters_.list().yearCutoff;
    rules.migrated = filters_.list().migratedFilter;
    rules.onlyTroubled = filters_.list().onlyTroubled;
    rules.sortMode = filters_.list().sortMode;
    rules.ascending = filters_.list().sortAscending;
    return rules;
}

void VisibleMessages::rebuildVisibleMessages() {
    rebuildTask_.start(TaskPriority::userInitiated, ListJob{listInput(), listRules(), selectedMessageID_},
                       &makeList, [this, asked = selectedMessageID_](Listed listed) {
                           // Another message may have been selected meanwhile.
                           const bool isListed = selectedMessageID_ == asked
                                                     ? listed.holdsSelected
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
