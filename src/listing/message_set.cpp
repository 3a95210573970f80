#include "listing/message_set.h"

#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "platform/threads/parallel.h"

namespace corvane {

namespace {

auto idIn(const MessageList& messages) {
    return [&messages](PositionTable::Position position) { return messages[position].id.view(); };
}

PositionTable positionsByID(const MessageList& messages) {
    PositionTable positions;
    positions.reserve(messages.size());
    PositionTable::Position position = 0;
    for (const MailMessageRecord& message : messages) {
        if (!positions.insert(message.id, position++, idIn(messages)).second)
            throw std::logic_error("a message id stands twice in one list");
    }
    return positions;
}

} // namespace

std::shared_ptr<const MessageSet> MessageSet::make(SharedMessageList messages, bool isComplete) {
    auto set = std::make_shared<MessageSet>();
    set->messages = std::move(messages);
    set->isComplete = isComplete;
    const MessageList& list = *set->messages;
    platform::parallelCalls([&] { set->positionByID = positionsByID(list); },
                            [&] {
                                set->counted =
                                    std::make_shared<const CountedMessages>(countedMessages(allOf(list)));
                                set->yearStats = computeYearStats(*set->counted);
                            });
    return set;
}

std::shared_ptr<const MessageSet> MessageSet::passing(SharedMessageList messages) {
    auto set = std::make_shared<MessageSet>();
    set->messages = std::move(messages);
    set->isComplete = false;
    return set;
}

const MailMessageRecord* MessageSet::find(std::string_view id) const {
    const auto position = positionByID.position(id, idIn(*messages));
    return position ? &(*messages)[*position] : nullptr;
}

} // namespace corvane
