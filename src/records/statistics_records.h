// Totals of sets of messages, as the statistics and the screens pass them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "records/values.h"

namespace corvane {

struct MailScanSummary {
    std::int64_t scannedMessages = 0;
    std::int64_t matchedMessages = 0;
    std::int64_t attachmentMessages = 0;
    std::int64_t attachments = 0;
    std::int64_t bytes = 0;
    std::int64_t attachmentBytes = 0;
    std::vector<std::string> accountNames;
    std::optional<Date> newestDate;
    std::optional<Date> oldestDate;

    friend bool operator==(const MailScanSummary&, const MailScanSummary&) = default;
};

struct YearStat {
    std::int64_t year = 0;
    std::int64_t messageCount = 0;
    std::int64_t withAttachmentCount = 0;
    std::int64_t attachmentCount = 0;
    std::int64_t messageBytes = 0;
    std::int64_t attachmentBytes = 0;

    [[nodiscard]] std::int64_t id() const { return year; }

    [[nodiscard]] std::string displayYear() const;

    friend bool operator==(const YearStat&, const YearStat&) = default;
};

struct AccountYearStatGroup {
    std::string accountPrefix;
    std::string accountName;
    std::vector<YearStat> years;
    std::int64_t messageCount = 0;
    std::int64_t messageBytes = 0;

    [[nodiscard]] const std::string& id() const { return accountPrefix; }

    friend bool operator==(const AccountYearStatGroup&, const AccountYearStatGroup&) = default;
};

struct SpaceSenderStat {
    std::string senderKey;
    std::string displayName;
    std::int64_t messageCount = 0;
    std::int64_t bytes = 0;

    [[nodiscard]] const std::string& id() const { return senderKey; }

    friend bool operator==(const SpaceSenderStat&, const SpaceSenderStat&) = default;
};

struct SpaceAccountUsage {
    std::string accountPrefix;
    std::string accountName;
    bool isIMAP = false;
    std::int64_t localCount = 0;
    std::int64_t localBytes = 0;
    std::int64_t cloudOnlyCount = 0;
    std::int64_t cloudOnlyBytes = 0;
    std::vector<SpaceSenderStat> topSenders;

    [[nodiscard]] const std::string& id() const { return accountPrefix; }

    friend bool operator==(const SpaceAccountUsage&, const SpaceAccountUsage&) = default;
};

} // namespace corvane
