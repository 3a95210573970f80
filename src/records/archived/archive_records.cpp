#include "records/archived/archive_records.h"

#include <fmt/format.h>

#include "records/timestamps.h"

namespace corvane {

std::string ArchivedEntry::id() const {
    return fmt::format("{}\x01{}", locationRootPath.view(), record.id.view());
}

const EmailArchiveIndex& EmailArchiveIndex::empty() {
    static const EmailArchiveIndex index = [] {
        const Date now = currentTimestamp();
        return EmailArchiveIndex{.createdAt = now, .updatedAt = now, .records = {}};
    }();
    return index;
}

const char* ArchiveLocation::symbol() const {
    switch (kind) {
    case Kind::cloud:
        return "icloud";
    case Kind::removable:
        return "externaldrive";
    case Kind::local:
        break;
    }
    return "folder";
}

} // namespace corvane
