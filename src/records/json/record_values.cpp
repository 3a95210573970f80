#include <fmt/format.h>

#include "records/archive_records.h"
#include "records/mail_account.h"
#include "records/statistics_records.h"
#include "records/timestamps.h"

namespace corvane {

std::string YearStat::displayYear() const {
    return fmt::format("{} 年", year);
}

std::string MailAccount::distinguishedLabel() const {
    std::string label = linkedAccountEmail.value_or(emailAddress);
    if (isLocalStore) label += "（Mail 本机归档文件夹）";
    return label;
}

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
