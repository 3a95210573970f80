#include "screens/home/home_screen.h"

#include <algorithm>

#include <QVariantMap>

#include "records/formatters.h"
#include "records/timestamps.h"
#include "screens/home/figures/year_series.h"
#include "screens/shell/sidebar/sidebar_model.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownLine;
using screens::shownSize;

// From then on a scan is worth repeating before one decides about years of mail.
constexpr std::chrono::days freshness(7);

QString yearTitle(std::int64_t year) {
    return QStringLiteral("%1 年").arg(year);
}

} // namespace

HomeScreen::HomeScreen(CorvaneViewModel& model, OrganizeData& data, ArchiveScreen& archive,
                       DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , data_(data)
  , archive_(archive)
  , desktop_(desktop) {
    scanTick_.setInterval(std::chrono::seconds(1));
    wire();
    takeOverview();
    takeScanState();
}

void HomeScreen::wire() {
    connect(&data_, &OrganizeData::overviewChanged, this, &HomeScreen::takeOverview);
    connect(&tree_, &OrganizeTreeModel::ticksChanged, this, &HomeScreen::showFigures);
    connect(&model_.counts(), &IndexCounts::countsChanged, this, &HomeScreen::figuresChanged);
    connect(&model_.scanFlow(), &ScanFlow::stateChanged, this, &HomeScreen::takeScanState);
    connect(&model_.diskAccess(), &FullDiskAccess::needsFullDiskAccessChanged, this,
            &HomeScreen::stateChanged);
    connect(&model_.accounts(), &AccountDirectory::accountsChanged, this, &HomeScreen::scanAccountsChanged);
    connect(&model_.accounts(), &AccountDirectory::loadFailureChanged, this, &HomeScreen::stateChanged);
    connect(&scanTick_, &QTimer::timeout, this, &HomeScreen::scanElapsedChanged);
    const auto destinationReplaced = [this] {
        Q_EMIT destinationChanged();
        Q_EMIT selectionChanged();
    };
    connect(&model_.destinations(), &ArchiveDestinations::destinationChanged, this, destinationReplaced);
    connect(&model_.destinations(), &ArchiveDestinations::factsChanged, this, destinationReplaced);
    connect(&archive_, &ArchiveScreen::stageChanged, this, &HomeScreen::selectionChanged);
    connect(&archive_, &ArchiveScreen::stageChanged, this, &HomeScreen::stateChanged);
}

void HomeScreen::takeOverview() {
    const auto& accounts = data_.overview()->accounts;
    const auto isKnown = [&](const OrganizeAccount& account) { return scope_.accountKey == account.key; };
    // A scope of what has gone would hide all the mail.
    if (scope_.accountKey && std::none_of(accounts.begin(), accounts.end(), isKnown)) setScope({});
    tree_.setOverview(data_.overview());
    accounts_.show(*data_.overview(), scope_.accountKey);
    showFigures();
    Q_EMIT stateChanged();
}

void HomeScreen::showFigures() {
    selection_ = tree_.ticks().selectionIn(*data_.overview());
    Q_EMIT figuresChanged();
    Q_EMIT selectionChanged();
}

void HomeScreen::takeScanState() {
    if (isScanning() && !scanTick_.isActive()) {
        scanClock_.start();
        scanTick_.start();
    } else if (!isScanning()) {
        scanTick_.stop();
    }
    Q_EMIT stateChanged();
    Q_EMIT scanElapsedChanged();
    Q_EMIT figuresChanged();
    Q_EMIT selectionChanged();
}

HomeScreen::State HomeScreen::state() const {
    if (model_.diskAccess().needsFullDiskAccess()) return NoAccess;
    if (isScanning()) return Scanning;
    if (!model_.hasScanDisplayData()) return FirstUse;
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
        return QStringLiteral("需要你授权一次，才能读取 Apple Mail 的数据。");
    case Scanning:
        return QStringLiteral("正在确认哪些邮件还需要放入归档库。");
    case FirstUse:
        return QStringLiteral("把多年的邮件安全放进归档库，再放心腾出空间。");
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
    return state() == List && data_.isKnown() ? shownCount(candidateCount()) : QString();
}

QString HomeScreen::organizeRangeTitle() const {
    QString title = scope_.year ? yearTitle(*scope_.year) : QStringLiteral("全部年份");
    if (!scope_.accountKey) return title;
    for (const OrganizeAccount& account : data_.overview()->accounts) {
        if (account.key == *scope_.accountKey)
            return shownLine(account.title) + QStringLiteral(" · ") + title;
    }
    return title;
}

QString HomeScreen::updatedText() const {
    const auto& date = model_.scanFlow().cacheLoadedAt();
    if (!date || isScanning()) return {};
    const QString text = screens::wholeText(formatListDate(*date)) + QStringLiteral(" 更新");
    return currentTimestamp() - *date > freshness ? text + QStringLiteral(" · 建议重新扫描") : text;
}

QString HomeScreen::updateTitle() const {
    return isScanning() ? QStringLiteral("正在更新 Mail 数据") : QStringLiteral("更新 Mail 数据");
}

QString HomeScreen::scanLine() const {
    return isScanning() ? screens::wholeText(model_.scanFlow().state().text) : QString();
}

QString HomeScreen::scanElapsed() const {
    return scanClock_.isValid() ? screens::shownDuration(scanClock_.elapsed() / 1000) : QString();
}

QVariantList HomeScreen::scanAccounts() const {
    QVariantList shown;
    for (const MailAccount& account : model_.accounts().availableAccounts()) {
        const QString kind =
            account.isLocalStore ? QStringLiteral("本机") : screens::wholeText(account.scheme).toUpper();
        shown << QVariantMap{{QStringLiteral("name"), shownLine(account.distinguishedLabel())},
                             {QStringLiteral("symbol"),
                              account.isLocalStore ? QStringLiteral("folder") : QStringLiteral("at-sign")},
                             {QStringLiteral("line"),
                              QStringLiteral("%1 · %2 个文件夹")
                                  .arg(kind, shownCount(static_cast<std::int64_t>(account.folders.size())))}};
    }
    return shown;
}

QString HomeScreen::failureText() const {
    const MailScanState& scan = model_.scanFlow().state();
    return scan.kind == MailScanState::Kind::failed ? screens::wholeText(scan.text) : QString();
}

DeletionSafety HomeScreen::safety() const {
    std::set<std::int64_t> years;
    if (scope_.year) years.insert(*scope_.year);
    return data_.deletionSafety(scope_.accountKey, years);
}

SafetyBanner HomeScreen::banner() const {
    if (!hasFigures()) {
        return {QStringLiteral("info"),
                QStringLiteral("info"),
                QStringLiteral("正在读取上次的结果"),
                {QStringLiteral("正在确认哪些邮件还需要放入归档库。")}};
    }
    return screens::deletionSafetyBanner(organizeRangeTitle(), safety());
}

QVariantList HomeScreen::years() const {
    return screens::chartYears(
        screens::yearBars(*data_.overview(), scope_.accountKey, selection_.years, data_.indexedYears()));
}

QVariantList HomeScreen::sums() const {
    const DeletionSafety known = safety();
    const auto entry = [this](const char* series, const QString& label, std::int64_t value) {
        return QVariantMap{{QStringLiteral("series"), QString::fromLatin1(series)},
                           {QStringLiteral("label"), label},
                           {QStringLiteral("value"), static_cast<int>(value)},
                           {QStringLiteral("text"), hasFigures() ? shownCount(value) : QStringLiteral("—")}};
    };
    return {entry("archived", QStringLiteral("已归档"), known.archived),
            entry("unarchived", QStringLiteral("未归档"), known.local - known.archived),
            entry("serverOnly", QStringLiteral("仅在服务器"), known.serverOnly)};
}

void HomeScreen::setScope(OrganizeScope scope) {
    if (scope_ == scope) return;
    scope_ = std::move(scope);
    std::set<std::int64_t> years;
    if (scope_.year) years.insert(*scope_.year);
    model_.applyHomeScope(scope_.accountKey, years);
    accounts_.show(*data_.overview(), scope_.accountKey);
    tree_.setScope(scope_);
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

DestinationView HomeScreen::destination() const {
    return {model_.destinations().transferDestination(), model_.destinations().facts(),
            model_.context().platform};
}

QString HomeScreen::destinationName() const {
    return screens::destinationName(destination());
}

QString HomeScreen::destinationPath() const {
    const auto& path = destination().path;
    if (!path) return {};
    return screens::shownPath(screens::wholeText(*path),
                              screens::wholeText(model_.context().platform.realUserHomeDirectory()));
}

QString HomeScreen::destinationSymbol() const {
    return screens::destinationSymbol(destination());
}

DestinationRemark HomeScreen::locationRemark() const {
    return screens::locationBarRemark(destination());
}

QString HomeScreen::selectionTitle() const {
    return selection_.count > 0 ? QStringLiteral("已选 ") + shownSize(selection_.bytes)
                                : QStringLiteral("尚未勾选");
}

QString HomeScreen::selectionLine() const {
    if (selection_.count == 0) return QStringLiteral("尚未勾选");
    return QStringLiteral("已选 %1 · %2")
        .arg(screens::shownMessageCount(selection_.count), shownSize(selection_.bytes));
}

QString HomeScreen::organizeSelectionSummary() const {
    if (selection_.count > 0)
        return shownCount(selection_.count) + QStringLiteral(" 封邮件。点击「归档选中」只会归档这些邮件。");
    return organizeSimpleSummary();
}

// Where nothing is left to archive, the archive itself is the next step.
HomeScreen::HomeAction HomeScreen::effectiveHomeAction() const {
    return state() == NothingToDo && !model_.library().archivedEntries()->empty()
               ? HomeAction::openArchiveLibrary
               : HomeAction::organize;
}

// Says nothing of a place that isn't in the sidebar.
QString HomeScreen::nothingToDoLine() const {
    if (SidebarModel::hasScreen(u"archived"))
        return QStringLiteral("已备份的邮件可以在「已归档概览」里查看。");
    return model_.library().archivedEntries()->empty() ? QString()
                                                       : QStringLiteral("已备份的邮件在归档文件夹里。");
}

QString HomeScreen::organizePrimaryTitle() const {
    if (archive_.isRunning()) return QStringLiteral("查看归档进度");
    if (effectiveHomeAction() == HomeAction::openArchiveLibrary)
        return SidebarModel::hasScreen(u"library") ? QStringLiteral("打开归档库")
                                                   : QStringLiteral("打开归档文件夹");
    return selection_.count > 0 ? QStringLiteral("归档选中") : QStringLiteral("归档全部");
}

bool HomeScreen::organizePrimaryDisabled() const {
    if (archive_.isRunning()) return false;
    if (effectiveHomeAction() == HomeAction::openArchiveLibrary)
        return !SidebarModel::hasScreen(u"library") && !(hasDestination() && destination().facts.connected);
    return state() != List || !hasDestination() || model_.catalog().messages()->empty() || !hasFigures() ||
           (selection_.count == 0 && candidateCountInScope() == 0);
}

void HomeScreen::runOrganizePrimaryAction() {
    if (archive_.isRunning()) {
        archive_.bringToFront();
    } else if (effectiveHomeAction() == HomeAction::openArchiveLibrary) {
        openLibrary();
    } else if (!hasDestination()) {
        return; // the location bar asks for it
    } else if (model_.accounts().availableAccounts().empty() &&
               model_.accounts().accountLoadFailureMessage()) {
        openPrivacySettings();
    } else if (!model_.hasScanDisplayData()) {
        model_.scanFlow().scan();
    } else if (!model_.catalog().messages()->empty()) {
        openArchive(selection_.count == 0);
    }
}

void HomeScreen::openLibrary() {
    if (SidebarModel::hasScreen(u"library")) {
        Q_EMIT libraryRequested();
    } else if (const auto path = destination().path) {
        desktop_.open(QUrl::fromLocalFile(screens::wholeText(*path)));
    }
}

void HomeScreen::openArchive(bool everything) {
    OrganizeTicks ticks = tree_.ticks();
    if (everything) ticks.setAll(*data_.overview(), scope_, true);
    std::set<std::int64_t> years = ticks.selectionIn(*data_.overview()).years;
    // The undated are in no year, and all years are no choice of some.
    const bool isAllYears = everything && !scope_.year;
    if (isAllYears || years.contains(undatedYear)) years.clear();
    archive_.open(ArchiveOffer{
        [overview = data_.overview(), ticks] { return ticks.organizeSelectedMessageIDs(*overview); }, years});
}

void HomeScreen::copyTreeRows() {
    const QString lines = tree_.selectedLines();
    if (!lines.isEmpty()) desktop_.copy(lines);
}

void HomeScreen::updateMailData() {
    if (canUpdate()) model_.scanFlow().refreshAllMailData();
}

void HomeScreen::cancelScan() {
    model_.scanFlow().cancelScan();
}

void HomeScreen::recheckAccess() {
    model_.diskAccess().refreshFullDiskAccessState();
}

void HomeScreen::openPrivacySettings() {
    desktop_.open(
        QUrl(QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles")));
}

} // namespace corvane
