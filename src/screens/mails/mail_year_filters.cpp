#include "screens/mails/mail_year_filters.h"

#include <charconv>
#include <string>
#include <utility>
#include <vector>

#include "screens/texts/shown_figures.h"

namespace corvane {

void MailYearFilters::setOnlyBeforeCutoff(bool only) {
    filters_.set(&ListFilters::onlyBeforeCutoff, only);
}

void MailYearFilters::toggle(int row) {
    const FilterOption* const option = options_.record(row);
    if (option == nullptr) return;
    std::int64_t year = 0;
    std::from_chars(option->key.data(), option->key.data() + option->key.size(), year);
    std::set<std::int64_t> years = filters_.list().filterYears;
    if (years.erase(year) == 0) years.insert(year);
    filters_.set(&ListFilters::filterYears, std::move(years));
}

void MailYearFilters::clear() {
    filters_.set(&ListFilters::filterYears, {});
    filters_.set(&ListFilters::onlyBeforeCutoff, false);
}

void MailYearFilters::show(std::map<std::int64_t, std::int64_t> counts) {
    const std::set<std::int64_t>& chosen = filters_.list().filterYears;
    for (const std::int64_t year : chosen) counts.try_emplace(year, 0);
    std::vector<FilterOption> options;
    options.reserve(counts.size());
    for (auto each = counts.rbegin(); each != counts.rend(); ++each) {
        options.push_back({std::to_string(each->first), screens::shownYear(each->first), each->second,
                           chosen.contains(each->first)});
    }
    options_.replace(std::move(options));
    Q_EMIT changed();
}

} // namespace corvane
