// Why a scan found no mail, as the user is told.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

struct MailStore;

struct EmptyScanMessage {
    std::string text;
    bool isYearRangeInfo = false; // advice on the year, not an error
};

// Any thread; touches the disk and may run a query. `maximumYear` is the newest year that was asked for;
// absent for all.
EmptyScanMessage emptyScanFailureMessage(const MailStore& store, std::optional<std::int64_t> maximumYear);

inline constexpr const char* missingMailRootMessage =
    "没有找到本机 Mail 数据目录。请先打开 Apple Mail 并完成账户同步。";

} // namespace corvane
