#include "screens/library/library_filter_menus.h"

#include <algorithm>
#include <utility>

#include "library/accounts/account_scopes.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

QString option(const QString& title, std::int64_t count) {
    return QStringLiteral("%1（%2）").arg(title, screens::shownCount(count));
}

// The row of the option that a filter names; the first one is for all.
template <class Options, class Key>
int rowOf(const std::optional<std::string>& filter, const Options& options, Key key) {
    if (!filter) return 0;
    const auto found = std::ranges::find(options, *filter, key);
    return found == options.end() ? -1 : static_cast<int>(found - options.begin()) + 1;
}

template <class Options, class Key>
std::optional<std::string> filterOf(int row, const Options& options, Key key) {
    if (row <= 0 || std::cmp_greater(row, options.size())) return std::nullopt;
    return options[static_cast<std::size_t>(row - 1)].*key;
}

QVariantList yearMaps(const std::vector<YearOfMail>& years) {
    QVariantList list;
    for (const YearOfMail& each : years) {
        list.append(QVariantMap{
            {QStringLiteral("year"), static_cast<int>(each.year)},
            {QStringLiteral("count"), static_cast<qlonglong>(each.count)},
            {QStringLiteral("text"),
             QStringLiteral("%1 · %2 · %3")
                 .arg(screens::shownYear(each.year), screens::shownMessageCount(each.count),
                      screens::shownSize(each.bytes))},
        });
    }
    return list;
}

QString undatedLine(std::int64_t count) {
    return count == 0 ? QString() : screens::undatedRemark(count);
}

} // namespace

LibraryFilterMenus::LibraryFilterMenus(LibraryListFlow& flow, QObject* parent)
  : QObject(parent)
  , flow_(flow)
  , offer_(makeOffer()) {
    connect(&flow, &LibraryListFlow::filtersChanged, this, &LibraryFilterMenus::changed);
    connect(&flow, &LibraryListFlow::listChanged, this, &LibraryFilterMenus::update);
}

LibraryFilterMenus::Offer LibraryFilterMenus::makeOffer() const {
    Offer offer;
    offer.locations = {QStringLiteral("全部位置")};
    for (const auto& each : flow_.list()->locationOptions) {
        const QString title = screens::shownLine(each.title);
        offer.locations += option(each.isConnected ? title : title + QStringLiteral("，未连接"), each.count);
    }
    offer.accounts = {QStringLiteral("全部邮箱")};
    for (const auto& each : flow_.list()->accountOptions)
        offer.accounts += option(screens::shownLine(each.title), each.count);
    offer.accounts += QStringLiteral("地址合集…");
    offer.mailboxes = {QStringLiteral("全部文件夹")};
    for (const MailboxOption& each : facets_.mailboxes)
        offer.mailboxes += option(screens::shownLine(mailboxDisplayName(each.mailbox)), each.count);
    offer.years = yearMaps(facets_.years);
    offer.undated = undatedLine(facets_.undated);
    return offer;
}

void LibraryFilterMenus::update() {
    Offer offer = makeOffer();
    if (offer != offer_) {
        offer_ = std::move(offer);
        Q_EMIT offerChanged();
    }
    Q_EMIT changed();
}

int LibraryFilterMenus::location() const {
    return rowOf(flow_.filters().libraryLocationFilter, flow_.list()->locationOptions,
                 &LibraryLocationFilterOption::rootPath);
}

int LibraryFilterMenus::account() const {
    return rowOf(flow_.filters().libraryAccountFilter, flow_.list()->accountOptions,
                 &LibraryAccountFilterOption::key);
}

int LibraryFilterMenus::mailbox() const {
    return rowOf(flow_.filters().libraryMailboxFilter, facets_.mailboxes, &MailboxOption::mailbox);
}

void LibraryFilterMenus::setLocation(int row) {
    flow_.setLibraryLocationFilter(
        filterOf(row, flow_.list()->locationOptions, &LibraryLocationFilterOption::rootPath));
}

void LibraryFilterMenus::setAccount(int row) {
    if (row == std::ssize(flow_.list()->accountOptions) + 1) {
        Q_EMIT collectionRequested(screens::wholeText(flow_.filters().libraryAccountFilter.value_or("")));
        return;
    }
    flow_.setLibraryAccountFilter(
        filterOf(row, flow_.list()->accountOptions, &LibraryAccountFilterOption::key));
}

void LibraryFilterMenus::setMailbox(int row) {
    flow_.setLibraryMailboxFilter(filterOf(row, facets_.mailboxes, &MailboxOption::mailbox));
}

int LibraryFilterMenus::firstYear() const {
    return flow_.filters().years ? static_cast<int>(flow_.filters().years->first) : -1;
}

int LibraryFilterMenus::lastYear() const {
    return flow_.filters().years ? static_cast<int>(flow_.filters().years->last) : -1;
}

QString LibraryFilterMenus::spanText() const {
    if (!flow_.filters().years) return {};
    const auto [first, last] = *flow_.filters().years;
    return first == last ? screens::shownYear(first) : QStringLiteral("%1–%2 年").arg(first).arg(last);
}

void LibraryFilterMenus::chooseYears(int first, int last) {
    const YearSpan span{std::min(first, last), std::max(first, last)};
    flow_.setLibraryYears(flow_.filters().years == span ? std::nullopt : std::optional(span));
}

void LibraryFilterMenus::clearYears() {
    flow_.setLibraryYears(std::nullopt);
}

void LibraryFilterMenus::clear() {
    flow_.showEverything();
}

void LibraryFilterMenus::setFacets(LibraryFacets facets) {
    facets_ = std::move(facets);
    update();
}

} // namespace corvane
