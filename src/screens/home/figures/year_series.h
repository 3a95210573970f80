// The bars of the home's chart: a year's archived, unarchived and server-only messages, oldest first. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <QVariantList>

#include "listing/deletion/organize_sections.h"

namespace corvane {

struct YearBar {
    std::int64_t year = 0;
    std::int64_t archived = 0;
    std::int64_t unarchived = 0;
    std::int64_t serverOnly = 0;
    bool hasTicks = false;

    friend bool operator==(const YearBar&, const YearBar&) = default;
};

namespace screens {

// Of one account, or of all without one; every year of which something is known. The undated stand in no bar.
std::vector<YearBar> yearBars(const OrganizeOverview& overview, const std::optional<std::string>& accountKey,
                              const std::set<std::int64_t>& tickedYears, const IndexedYears& indexed);

// For the chart control.
QVariantList chartYears(const std::vector<YearBar>& bars);

} // namespace screens

} // namespace corvane
