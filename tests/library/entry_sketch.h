// Archived mail from the few fields that a test names.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "records/archived/archive_records.h"
#include "records/mail_account.h"

namespace corvane::testing {

struct EntrySketch {
    std::string id;
    std::string subject = "";
    std::optional<int> year = 2020; // its first of June; absent: without a date
    std::string identifier = {};
    std::vector<std::string> references = {};
    std::string account = "a@x"; // empty: the record names none
    std::string mailbox = "INBOX";
    std::string root = "/r";
    std::string sender = "s@y";
    std::string accountIdentifier = {};
    std::int64_t size = 10;
    std::string recipients = {};
};

inline ArchivedEntry makeEntry(const EntrySketch& sketch) {
    ArchivedEntry entry;
    entry.locationRootPath = sketch.root;
    ArchivedEmailRecord& record = entry.record;
    record.id = sketch.id;
    record.subject = sketch.subject;
    record.sender = sketch.sender;
    record.recipients = sketch.recipients;
    record.mailbox = sketch.mailbox;
    record.sizeBytes = sketch.size;
    if (!sketch.identifier.empty()) record.messageIdentifier = SharedText(sketch.identifier);
    if (!sketch.references.empty())
        record.referencedMessageIdentifiers.emplace(sketch.references.begin(), sketch.references.end());
    if (!sketch.account.empty()) record.accountName = SharedText(sketch.account);
    if (!sketch.accountIdentifier.empty()) record.accountIdentifier = SharedText(sketch.accountIdentifier);
    if (sketch.year) {
        const std::chrono::year_month_day day{std::chrono::year(*sketch.year), std::chrono::June,
                                              std::chrono::day(1)};
        record.date = std::chrono::sys_days(day);
    }
    return entry;
}

inline SharedEntryList makeEntries(const std::vector<EntrySketch>& sketches) {
    auto entries = std::make_shared<std::vector<ArchivedEntry>>();
    for (const EntrySketch& sketch : sketches) entries->push_back(makeEntry(sketch));
    return entries;
}

inline MailAccount makeAccount(const std::string& prefix, const std::string& address,
                               const std::vector<std::string>& folders = {},
                               const std::optional<std::string>& linked = {}, bool isLocalStore = false) {
    MailAccount account;
    account.urlPrefix = prefix;
    account.emailAddress = address;
    for (const std::string& folder : folders) account.folders.push_back({folder, 0});
    account.linkedAccountEmail = linked;
    account.isLocalStore = isLocalStore;
    return account;
}

} // namespace corvane::testing
