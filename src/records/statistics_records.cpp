#include "records/statistics_records.h"

#include <fmt/format.h>

namespace corvane {

std::string YearStat::displayYear() const {
    return fmt::format("{} 年", year);
}

} // namespace corvane
