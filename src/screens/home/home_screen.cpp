#include "screens/home/home_screen.h"

#include <algorithm>

#include <QVariantMap>

#include "screens/home/figures/year_series.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"
#include "screens/texts/window_places.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownLine;
using screens::shownSize;

// A series of the legend; a dash while nothing is known.
QVariantMap seriesSum(const char* series, const QString& label, std::int64_t value, bool isKnown) {
    return {{QStringLiteral("series"), QString::fromLatin1(series)},
            {QStringLiteral("label"), label},
            {QStringLiteral("value"), static_cast<int>(value)},
            {QStringLiteral("text"), isKnown ? shownCount(value) : QStringLiteral("—")}};
}

} // namespace

HomeScreen::HomeScreen(CorvaneViewModel& model, OrganizeData& data, ArchiveScreen& archive,
                       DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , data_(data)
  , archive_(archive)
  , desktop_(desktop)
  , scan_(model.mail(), archive)
  , proof_(model)
  , access_(model.mail(), desktop) {
    wire();
    handleOverviewChange();
}

void HomeScreen::wire() {
    const auto on = [this](auto* sender, auto signal, auto reaction) {
        connect(sender, signal, this, reaction);
    };
    on(this, &HomeScreen::figuresChanged, [this] {
        ProofScope lookedAt{{}, scopeYears()};
        if (scope_.accountKey) lookedAt.accountPrefixes.insert(*scope_.accountKey);
        proof_.show(safety(), lookedAt, hasFigures());
    });
    on(&model_.library().loader, &LibraryLoader::archiveLocationsChanged, &HomeScreen::figuresChanged);
    on(&data_, &OrganizeData::overviewChanged, &HomeScreen::handleOverviewChange);
    on(&tree_, &OrganizeTreeModel::ticksChanged, &HomeScreen::updateFigures);
    on(&model_.mail().counts, &IndexCounts::countsChanged, &HomeScreen::figuresChanged);
    on(&model_.mail().diskAccess, &FullDiskAccess::needsFullDiskAccessChanged, &HomeScreen::stateChanged);
    on(&model_.mail().accounts, &AccountDirectory::loadFailureChanged, &HomeScreen::stateChanged);
    for (const auto signal :
         {&HomeScreen::stateChanged, &HomeScreen::figuresChanged, &HomeScreen::selectionChanged}) {
        on(&model_.mail().scanFlow, &ScanFlow::stateChanged, signal);
        on(&model_.mail().scanFlow, &ScanFlow::restorableChanged, signal);
    }
    on(&model_.mail().filters, &ModelFilters::scopeCleared, &HomeScreen::handleScopeCleared);
    on(&model_.mail().scanFlow, &ScanFlow::scanFinished, &HomeScreen::dropMissingYear);
    on(&model_.mail().scanFlow, &ScanFlow::cachedScanRestored, [this] { dropMissingYear(); });
    for (const auto signal : {&HomeScreen::destinationChanged, &HomeScreen::selectionChanged}) {
        on(&model_.archiving().destinations, &ArchiveDestinations::destinationChanged, signal);
        on(&model_.archiving().destinations, &ArchiveDestinations::factsChanged, signal);
    }
    for (const auto signal : {&HomeScreen::selectionChanged, &HomeScreen::stateChanged})
        on(&archive_, &ArchiveScreen::stageChanged, signal);
}

void HomeScreen::handleOverviewChange() {
    const auto& accounts = data_.overview()->accounts;
    const auto isKnown = [&](const OrganizeAccount& account) { return scope_.accountKey == account.key; };
    // A scope of what has gone would hide all the mail.
    if (scope_.accountKey && std::none_of(accounts.begin(), accounts.end(), isKnown)) setScope({});
    tree_.setOverview(data_.overview());
    accounts_.show(*data_.overview(), scope_.accountKey);
    updateFigures();
    Q_EMIT stateChanged();
}

void HomeScreen::updateFigures() {
    selection_ = tree_.ticks().selectionIn(*data_.overview());
    Q_EMIT figuresChanged();
    Q_EMIT selectionChanged();
}

HomeScreen::State HomeScreen::state() const {
    if (model_.mail().diskAccess.needsFullDiskAccess()) return NoAccess;
    if (scan_.isScanning()) return Scanning;
    const ScanFlow& scan = model_.mail().scanFlow;
    const bool hasData = model_.hasScanDisplayData();
    if (isPartial() && (hasData || scan.restorableScanTime())) return Partial;
    if (!hasData) return scan.isLastScanAwaited() ? Loading : FirstUse;
    return data_.isKnown() && candidateCount() == 0 ? NothingToDo : List;
}

std::int64_t HomeScreen::candidateCount() const {
    return data_.overview()->candidateCount();
}

std::int64_t HomeScreen::candidateCountInScope() const {
    std::int64_t count = 0;
    for (const auto& section : data_.overview()->sections) {
        if (!scope_.holdsAccount(section.key)) continue;
        for (const auto& year : section.years) count += scope_.holdsYear(year.year) ? year.count : 0;
    }
    return count;
}

QString HomeScreen::organizeSimpleSummary() const {
    switch (state()) {
    case NoAccess:
        return access_.summary();
    case Scanning:
        return QStringLiteral("正在确认哪些邮件还需要放入归档库。");
    case FirstUse:
        return QStringLiteral("把多年的邮件安全放进归档库，再放心腾出空间。");
    case Loading:
        return QStringLiteral("正在读取上次的结果…");
    case Partial:
        return QStringLiteral("邮件列表不完整，还不能确认哪些邮件需要归档。");
    case NothingToDo:
        return QStringLiteral("没有需要继续归档的邮件。");
    case List:
        break;
    }
    if (!data_.isKnown()) return QStringLiteral("正在确认哪些邮件还需要放入归档库。");
    const std::int64_t count = candidateCountInScope();
    return count == 0 ? QStringLiteral("当前范围暂无邮件。")
                      : shownCount(count) + QStringLiteral(" 封需要放入归档库。");
}

QString HomeScreen::organizeSidebarSubtitle() const {
    if (state() == Loading) return QStringLiteral("—");
    return state() == List && data_.isKnown() ? shownCount(candidateCount()) : QString();
}

QString HomeScreen::organizeRangeTitle() const {
    QString title = scope_.year ? screens::shownYear(*scope_.year) : QStringLiteral("全部年份");
    if (!scope_.accountKey) return title;
    for (const OrganizeAccount& account : data_.overview()->accounts) {
        if (account.key == *scope_.accountKey)
            return shownLine(account.title) + QStringLiteral(" · ") + title;
    }
    return title;
}

DeletionSafety HomeScreen::safety() const {
    return data_.deletionSafety(scope_.accountKey, scopeYears());
}

bool HomeScreen::hasFigures() const {
    return !isPartial() && data_.isKnown() && data_.overview()->hasMessages;
}

SafetyBanner HomeScreen::banner(const DeletionSafety& safety) const {
    if (isPartial()) return screens::partialListBanner(scan_.failureText());
    if (hasFigures())
        return screens::deletionSafetyBanner(organizeRangeTitle(), safety, model_.mail().counts.isKnown());
    return screens::unknownSafetyBanner(
        organizeRangeTitle(), state() == Loading ? QStringLiteral("读完之前，这里不说哪些可以删除。")
                                                 : QStringLiteral("正在确认哪些邮件还需要放入归档库。"));
}

OrganizeFigures HomeScreen::figures() const {
    const DeletionSafety known = safety();
    OrganizeFigures figures;
    figures.isKnown = hasFigures();
    figures.organizeRangeTitle = organizeRangeTitle();
    figures.banner = banner(known);
    if (!isPartial())
        figures.years = screens::chartYears(
            screens::yearBars(*data_.overview(), scope_.accountKey, selection_.years, data_.indexedYears()));
    figures.sums = {
        seriesSum("archived", QStringLiteral("已归档"), known.archived, figures.isKnown),
        seriesSum("unarchived", QStringLiteral("未归档"), known.local - known.archived, figures.isKnown),
        seriesSum("serverOnly", QStringLiteral("仅在服务器"), known.serverAlone(),
                  figures.isKnown && model_.mail().counts.isKnown())};
    figures.scopeYear = static_cast<int>(scope_.year.value_or(0));
    figures.isNarrowed = scope_ != OrganizeScope();
    return figures;
}

void HomeScreen::setScope(OrganizeScope scope) {
    if (scope_ == scope) return;
    scope_ = std::move(scope);
    applyScope();
    showScope();
}

void HomeScreen::applyScope() {
    model_.applyHomeScope(scope_.accountKey, scopeYears());
}

std::set<std::int64_t> HomeScreen::scopeYears() const {
    return scope_.year ? std::set{*scope_.year} : std::set<std::int64_t>();
}

void HomeScreen::showScope() {
    accounts_.show(*data_.overview(), scope_.accountKey);
    tree_.setScope(scope_);
}

// The model's filters have been emptied already.
void HomeScreen::handleScopeCleared() {
    scope_ = {};
    showScope();
    updateFigures();
}

// By the rule of the model's filters, which have dropped it.
void HomeScreen::dropMissingYear() {
    const std::vector<YearStat>& years = model_.mail().catalog.yearStats();
    if (!scope_.year || std::ranges::find(years, *scope_.year, &YearStat::year) != years.end()) return;
    setScope({scope_.accountKey, std::nullopt});
    updateFigures();
}

void HomeScreen::setScopeYear(int year) {
    setScope({scope_.accountKey, year == 0 ? std::nullopt : std::optional<std::int64_t>(year)});
}

void HomeScreen::chooseAccount(int row) {
    setScope({accounts_.keyAt(row), scope_.year});
}

void HomeScreen::clearScope() {
    setScope({});
}

OrganizeSelectionItem HomeScreen::selection() const {
    const bool isEmpty = selection_.count == 0;
    OrganizeSelectionItem item;
    item.title = isEmpty ? QStringLiteral("尚未勾选") : QStringLiteral("已选 ") + shownSize(selection_.bytes);
    item.line = isEmpty ? item.title
                        : QStringLiteral("已选 %1 · %2")
                              .arg(screens::shownMessageCount(selection_.count), shownSize(selection_.bytes));
    item.organizeSelectionSummary = organizeSelectionSummary();
    item.organizePrimaryTitle = organizePrimaryTitle();
    item.organizePrimaryDisabled = organizePrimaryDisabled();
    return item;
}

QString HomeScreen::organizeSelectionSummary() const {
    if (selection_.count > 0 && !destinationView(model_).path)
        return shownCount(selection_.count) + QStringLiteral(" 封邮件。先选择归档位置，再归档这些邮件。");
    if (selection_.count > 0)
        return shownCount(selection_.count) + QStringLiteral(" 封邮件。点击「归档选中」只会归档这些邮件。");
    return organizeSimpleSummary();
}

// Where nothing is left to archive, the archive itself is the next step.
HomeScreen::HomeAction HomeScreen::effectiveHomeAction() const {
    return state() == NothingToDo && !model_.library().loader.archivedEntries()->empty()
               ? HomeAction::openArchiveLibrary
               : HomeAction::organize;
}

QString HomeScreen::nothingToDoLine() const {
    return QStringLiteral("已备份的邮件可以在「已归档概览」里查看。");
}

QString HomeScreen::organizePrimaryTitle() const {
    if (archive_.isRunning()) return QStringLiteral("查看归档进度");
    if (effectiveHomeAction() == HomeAction::openArchiveLibrary) return QStringLiteral("打开归档库");
    return selection_.count > 0 ? QStringLiteral("归档选中") : QStringLiteral("归档全部");
}

bool HomeScreen::organizePrimaryDisabled() const {
    if (archive_.isRunning() || effectiveHomeAction() == HomeAction::openArchiveLibrary) return false;
    return state() != List || !destinationView(model_).path || model_.mail().catalog.messages()->empty() ||
           !hasFigures() || (selection_.count == 0 && candidateCountInScope() == 0);
}

void HomeScreen::runOrganizePrimaryAction() {
    if (archive_.isRunning()) {
        archive_.background()->bringToFront();
    } else if (effectiveHomeAction() == HomeAction::openArchiveLibrary) {
        Q_EMIT libraryRequested();
    } else if (!destinationView(model_).path) {
        return; // the location bar asks for it
    } else if (model_.mail().accounts.availableAccounts().empty() &&
               model_.mail().accounts.accountLoadFailureMessage()) {
        access_.openPrivacySettings();
    } else if (!model_.hasScanDisplayData()) {
        model_.mail().scanFlow.scan();
    } else if (!model_.mail().catalog.messages()->empty() && !isPartial()) {
        openArchive(selection_.count == 0);
    }
}

void HomeScreen::openArchive(bool everything) {
    OrganizeTicks ticks = tree_.ticks();
    if (everything) ticks.setAll(*data_.overview(), scope_, true);
    std::set<std::int64_t> years = ticks.selectionIn(*data_.overview()).years;
    // The undated are in no year, and all years are no choice of some.
    const bool isAllYears = everything && !scope_.year;
    if (isAllYears || years.contains(undatedYear)) years.clear();
    archive_.open(ArchiveRequest{
        [overview = data_.overview(), ticks] { return ticks.organizeSelectedMessageIDs(*overview); }, years});
}

void HomeScreen::showTroubled() {
    ModelFilters& filters = model_.mail().filters;
    filters.set(&ListFilters::searchText, {});
    filters.set(&ListFilters::minimumAttachmentCount, 0);
    filters.set(&ListFilters::onlyBeforeCutoff, false);
    filters.set(&ListFilters::migratedFilter, MigratedFilter::all);
    filters.set(&ListFilters::onlyTroubled, true);
    applyScope();
    Q_EMIT troubledRequested();
}

void HomeScreen::copyTreeRows() {
    const QString lines = tree_.selectedLines();
    if (!lines.isEmpty()) desktop_.copy(lines);
}

} // namespace corvane
