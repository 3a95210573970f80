// What the states of a year or folder of archived mail are called wherever a person reads them.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "library/overview/archived_overview.h"

namespace corvane {

constexpr bool isPartlyRemoved(const ArchivedOverviewStats::Year& year) {
    return year.status == ArchivedOverviewRowStatus::cleanable && !year.isCleanable;
}

// `awaitsProof`: incomplete for no other reason than that originals still have to be compared.
constexpr std::string_view overviewStatusTitle(ArchivedOverviewRowStatus status, bool awaitsProof) {
    if (awaitsProof) return "待核对";
    constexpr std::array<std::string_view, 7> titles = {"正在对照…",     "未读取 Mail 状态",       "可清理",
                                                        "还有未归档",    "还有未归档（含服务器）", "待确认",
                                                        "已从 Mail 删除"};
    return titles.at(static_cast<std::size_t>(status));
}

// Of a year: where a mailbox has no original left, the others are still to be emptied one by one.
constexpr std::string_view overviewYearTitle(const ArchivedOverviewStats::Year& year) {
    if (isPartlyRemoved(year)) return "部分已从 Mail 删除";
    return overviewStatusTitle(year.status, year.awaitsProof);
}

} // namespace corvane
