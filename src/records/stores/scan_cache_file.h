// The two files of a finished scan: the whole result, which may be hundreds of megabytes, and what the home
// screen needs of it, which is small. The large one is encoded and decoded in pieces.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/writing/durable_file.h"
#include "records/mail_message_record.h"
#include "records/statistics_records.h"

namespace corvane {

struct MailScanCache {
    Date scannedAt{};
    MailScanSummary summary;
    std::vector<MailMessageRecord> messages;
    std::optional<std::vector<SharedText>> locallyAvailableMessageIDs;
    std::optional<std::vector<YearStat>> localYearStats;
    std::optional<std::vector<AccountYearStatGroup>> localAccountYearStats;

    friend bool operator==(const MailScanCache&, const MailScanCache&) = default;
};

struct MailHomeSnapshot {
    Date scannedAt{};
    MailScanSummary summary;
    std::int64_t localMessageCount = 0;
    std::int64_t localMessageBytes = 0;
    std::vector<YearStat> localYearStats;
    std::vector<AccountYearStatGroup> localAccountYearStats;

    friend bool operator==(const MailHomeSnapshot&, const MailHomeSnapshot&) = default;
};

// What goes into a scan cache, by reference: the lists are large. Absent pointers leave their key out.
struct ScanCacheContent {
    Date scannedAt{};
    const MailScanSummary* summary = nullptr;
    const std::vector<MailMessageRecord>* messages = nullptr;
    const std::vector<SharedText>* locallyAvailableMessageIDs = nullptr;
    const std::vector<YearStat>* localYearStats = nullptr;
    const std::vector<AccountYearStatGroup>* localAccountYearStats = nullptr;
};

// Hands the JSON text to the sink in order.
void encodeScanCache(const ScanCacheContent& content, const platform::ByteSink& sink);

// Throws JsonError. The ids of available messages share their characters with the messages where they follow
// the same order.
MailScanCache decodeScanCache(std::string_view json);

// Absent when the file doesn't exist. Throws std::system_error when it can't be read, JsonError when it
// doesn't decode.
std::optional<MailScanCache> readScanCacheFile(const std::string& path);

// The first member of such a file, without a look at the rest. Absent when it can't be read there.
std::optional<Date> readScanTime(const std::string& path);

} // namespace corvane
