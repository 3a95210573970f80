// What a whole scan leaves in the model, without the scan.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "model/mail/messages/message_catalog.h"
#include "support/sample_messages.h"

namespace corvane::testing {

// Publishes a whole scan's messages.
inline void publishMessages(MessageCatalog& catalog, MessageList messages) {
    auto shared = std::make_shared<const MessageList>(std::move(messages));
    MailScanSummary summary = makeSummary(allOf(*shared), static_cast<std::int64_t>(shared->size()));
    catalog.setMessages(MessageSet::make(std::move(shared), false), std::move(summary));
}

} // namespace corvane::testing
