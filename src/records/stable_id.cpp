#include "records/stable_id.h"

#include <cstdint>

#include <fmt/format.h>

namespace corvane {

std::string stableID(const MailMessageRecord& message) {
    if (message.messageIdentifier && !message.messageIdentifier->empty()) {
        return fmt::format("mid:{}", message.messageIdentifier->view());
    }
    const std::int64_t seconds = message.date ? message.date->time_since_epoch().count() : 0;
    return fmt::format("ck:{}|{}|{}", seconds, message.sender.view(), message.subject.view());
}

std::string_view baseID(std::string_view recordID) {
    return recordID.substr(0, recordID.find("#v"));
}

} // namespace corvane
