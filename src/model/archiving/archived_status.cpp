#include "model/archiving/archived_status.h"

#include <utility>

#include "records/stable_id.h"

namespace corvane {

namespace {

ArchivedStatus::IDs archivedIDs(const MessageList& messages, const SharedTextSet& baseIDs) {
    auto archived = std::make_shared<SharedTextSet>();
    if (baseIDs.empty()) return archived;
    for (const MailMessageRecord& message : messages) {
        if (baseIDs.contains(stableID(message))) archived->insert(message.id);
    }
    return archived;
}

} // namespace

ArchivedStatus::IDs ArchivedStatus::of(const SharedMessageList& messages, const IDs& baseIDs) {
    const std::scoped_lock lock(mutex_);
    if (prepared_.isOf(messages, baseIDs)) present_ = std::move(prepared_);
    if (!present_.isOf(messages, baseIDs)) present_ = {messages, baseIDs, archivedIDs(*messages, *baseIDs)};
    prepared_ = {};
    return present_.archived;
}

void ArchivedStatus::prepareFor(const SharedMessageList& messages) {
    prepare(messages, present().baseIDs.lock());
}

void ArchivedStatus::prepareFor(const IDs& baseIDs) {
    prepare(present().messages.lock(), baseIDs);
}

bool ArchivedStatus::Answer::isOf(const SharedMessageList& ofMessages, const IDs& ofBaseIDs) const {
    return archived && messages.lock() == ofMessages && baseIDs.lock() == ofBaseIDs;
}

ArchivedStatus::Answer ArchivedStatus::present() {
    const std::scoped_lock lock(mutex_);
    return present_;
}

void ArchivedStatus::prepare(const SharedMessageList& messages, const IDs& baseIDs) {
    if (!messages || !baseIDs || present().isOf(messages, baseIDs)) return;
    Answer answer{messages, baseIDs, archivedIDs(*messages, *baseIDs)};
    const std::scoped_lock lock(mutex_);
    std::swap(prepared_, answer);
}

} // namespace corvane
