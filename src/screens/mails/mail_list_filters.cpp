#include "screens/mails/mail_list_filters.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "listing/account_titles.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

template <class Value>
std::set<Value> toggled(std::set<Value> values, const Value& value) {
    if (values.erase(value) == 0) values.insert(value);
    return values;
}

} // namespace

QString yearRangesText(const std::set<std::int64_t>& years) {
    QStringList ranges;
    for (auto first = years.begin(); first != years.end();) {
        auto last = first;
        auto next = std::next(first);
        while (next != years.end() && *next == *last + 1) last = next++;
        ranges += first == last ? QString::number(*first) : QStringLiteral("%1–%2").arg(*first).arg(*last);
        first = next;
    }
    return ranges.join(u"、") + QStringLiteral(" 年");
}

MailListFilters::MailListFilters(ModelFilters& filters, AccountDirectory& accounts, QObject* parent)
  : QObject(parent)
  , filters_(filters)
  , directory_(accounts)
  , years_(filters) {
    pause_.setSingleShot(true);
    pause_.setInterval(queryPause);
    connect(&pause_, &QTimer::timeout, this, &MailListFilters::applyQuery);
    connect(&filters_, &ModelFilters::listFilterChanged, this, &MailListFilters::update);
    connect(&directory_, &AccountDirectory::accountsChanged, this, &MailListFilters::update);
    update();
}

bool MailListFilters::narrows() const {
    return years_.narrows() || !filters_.filterAccountPrefixes().empty() ||
           filters_.list().minimumAttachmentCount > 0 ||
           filters_.list().migratedFilter != MigratedFilter::all || filters_.list().onlyTroubled ||
           !filters_.list().searchText.empty();
}

void MailListFilters::setQuery(const QString& query) {
    if (query_ == query) return;
    query_ = query;
    Q_EMIT queryChanged();
    pause_.start();
}

void MailListFilters::applyQuery() {
    pause_.stop();
    filters_.set(&ListFilters::searchText, query_.toStdString());
}

void MailListFilters::setMigrated(int filter) {
    const auto last = static_cast<int>(allMigratedFilters.size()) - 1;
    filters_.set(&ListFilters::migratedFilter,
                 allMigratedFilters[static_cast<std::size_t>(std::clamp(filter, 0, last))]);
}

void MailListFilters::setSortMode(int mode) {
    filters_.set(&ListFilters::sortMode, allSortModes[static_cast<std::size_t>(std::clamp(mode, 0, 1))]);
}

void MailListFilters::setAscending(bool ascending) {
    filters_.set(&ListFilters::sortAscending, ascending);
}

void MailListFilters::setMinimumAttachments(int count) {
    filters_.set(&ListFilters::minimumAttachmentCount, std::max(count, 0));
}

void MailListFilters::setOnlyTroubled(bool only) {
    filters_.set(&ListFilters::onlyTroubled, only);
}

QString MailListFilters::troubledCountText() const {
    return counts_.troubled == 0 ? QString() : screens::shownCount(counts_.troubled);
}

void MailListFilters::toggleAccount(int row) {
    if (const FilterOption* const option = accountOptions_.record(row))
        filters_.setFilterAccountPrefixes(toggled(filters_.filterAccountPrefixes(), option->key));
}

void MailListFilters::removeChip(int index) {
    if (index < 0 || index >= static_cast<int>(chipList_.size())) return;
    // Copied: removing it replaces the list that holds it.
    const auto remove = chipList_[static_cast<std::size_t>(index)].remove;
    remove();
}

void MailListFilters::clear() {
    setQuery({});
    applyQuery();
    years_.clear();
    filters_.setFilterAccountPrefixes({});
    filters_.set(&ListFilters::minimumAttachmentCount, 0);
    filters_.set(&ListFilters::onlyTroubled, false);
    filters_.set(&ListFilters::migratedFilter, MigratedFilter::all);
}

void MailListFilters::setCounts(ListedCounts counts) {
    counts_ = std::move(counts);
    update();
}

void MailListFilters::update() {
    accountOptions_.replace(makeAccountOptions());
    years_.show(counts_.byYear);
    chipList_ = makeChips();
    QStringList chips;
    for (const Chip& chip : chipList_) chips += chip.text;
    if (chips != chips_) {
        chips_ = chips;
        Q_EMIT chipsChanged();
    }
    // While somebody types, the field holds more than the filter.
    const QString applied = QString::fromStdString(filters_.list().searchText);
    if (!pause_.isActive() && query_ != applied) {
        query_ = applied;
        Q_EMIT queryChanged();
    }
    Q_EMIT changed();
}

QString MailListFilters::accountTitle(const std::string& key) const {
    const auto counted = counts_.byAccount.find(key);
    const std::string_view nameInMail =
        counted == counts_.byAccount.end() ? std::string_view() : counted->second.name.view();
    return screens::shownLine(corvane::accountTitle(key, directory_.availableAccounts(), nameInMail));
}

// Most bytes first, as everywhere; a chosen account that has no messages can still be let go.
std::vector<FilterOption> MailListFilters::makeAccountOptions() const {
    const std::set<std::string>& chosen = filters_.filterAccountPrefixes();
    std::vector<std::pair<std::int64_t, FilterOption>> sized;
    sized.reserve(counts_.byAccount.size() + chosen.size());
    for (const auto& [key, account] : counts_.byAccount) {
        sized.emplace_back(account.bytes,
                           FilterOption{key, accountTitle(key), account.count, chosen.contains(key)});
    }
    for (const std::string& key : chosen) {
        if (!counts_.byAccount.contains(key))
            sized.emplace_back(0, FilterOption{key, accountTitle(key), 0, true});
    }
    std::stable_sort(sized.begin(), sized.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<FilterOption> options;
    options.reserve(sized.size());
    for (auto& [bytes, option] : sized) options.push_back(std::move(option));
    return options;
}

std::vector<MailListFilters::Chip> MailListFilters::makeChips() {
    std::vector<Chip> chips;
    const auto& accounts = filters_.filterAccountPrefixes();
    if (!accounts.empty()) {
        const QString text = accounts.size() == 1 ? accountTitle(*accounts.begin())
                                                  : QStringLiteral("%1 个邮箱").arg(accounts.size());
        chips.push_back({text, [this] { filters_.setFilterAccountPrefixes({}); }});
    }
    if (minimumAttachments() > 0) {
        chips.push_back({QStringLiteral("至少 %1 个附件").arg(minimumAttachments()),
                         [this] { filters_.set(&ListFilters::minimumAttachmentCount, 0); }});
    }
    if (years_.onlyBeforeCutoff()) {
        chips.push_back({screens::shownYear(years_.cutoff()) + QStringLiteral("及以前"),
                         [this] { filters_.set(&ListFilters::onlyBeforeCutoff, false); }});
    }
    if (onlyTroubled()) {
        chips.push_back(
            {QStringLiteral("有问题的邮件"), [this] { filters_.set(&ListFilters::onlyTroubled, false); }});
    }
    if (!filters_.list().filterYears.empty()) {
        chips.push_back({yearRangesText(filters_.list().filterYears),
                         [this] { filters_.set(&ListFilters::filterYears, {}); }});
    }
    return chips;
}

} // namespace corvane
