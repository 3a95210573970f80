#include "records/archived/stable_id.h"

#include <cstddef>
#include <cstdint>

#include <fmt/format.h>

namespace corvane {

namespace {

template <class Record>
std::string idOfFields(const Record& record) {
    if (record.messageIdentifier && !record.messageIdentifier->empty()) {
        return fmt::format("mid:{}", record.messageIdentifier->view());
    }
    const std::int64_t seconds = record.date ? record.date->time_since_epoch().count() : 0;
    return fmt::format("ck:{}|{}|{}", seconds, record.sender.view(), record.subject.view());
}

// What stands before "#v" and digits at the end; the whole id without them.
std::string_view withoutVariant(std::string_view id) {
    const std::size_t lastOther = id.find_last_not_of("0123456789");
    if (lastOther == std::string_view::npos || lastOther + 1 == id.size()) return id;
    const std::string_view rest = id.substr(0, lastOther + 1);
    return rest.ends_with("#v") ? rest.substr(0, rest.size() - 2) : id;
}

} // namespace

std::string stableID(const MailMessageRecord& message) {
    return idOfFields(message);
}

std::string stableID(const ArchivedEmailRecord& record) {
    return idOfFields(record);
}

std::string_view baseID(const ArchivedEmailRecord& record) {
    const std::string_view id = record.id.view();
    const std::string_view rest = withoutVariant(id);
    return rest.size() == id.size() || rest == stableID(record) ? rest : id;
}

} // namespace corvane
