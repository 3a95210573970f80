#include "screens/places/places_screen.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <QGuiApplication>

#include "platform/paths.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

constexpr std::chrono::seconds betweenLooks(5);

} // namespace

PlacesScreen::PlacesScreen(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , desktop_(desktop)
  , picker_(model) {
    wire();
}

void PlacesScreen::wire() {
    connect(&model_.library().places, &ArchivePlaces::placesChanged, this, &PlacesScreen::updateRows);
    // From the end of a look, as one at a disk that sleeps takes long.
    connect(&model_.library().places, &ArchivePlaces::placesChanged, this, [this] {
        if (isOpen_) nextLook_.start(betweenLooks);
    });
    nextLook_.setSingleShot(true);
    connect(&nextLook_, &QTimer::timeout, this, &PlacesScreen::refreshWhileOpen);
    connect(&model_.archiving().placeJobs, &PlaceJobs::changed, this, &PlacesScreen::updateRows);
    connect(&model_.archiving().archiveRun, &ArchiveRunFlow::archiveRunStarted, this,
            &PlacesScreen::updateRows);
    connect(&model_.archiving().archiveRun, &ArchiveRunFlow::archiveRunEnded, this,
            &PlacesScreen::updateRows);
    const auto refreshes = [this](auto* sender, auto signal) {
        connect(sender, signal, this, &PlacesScreen::refreshWhileOpen);
    };
    refreshes(&model_.library().loader, &LibraryLoader::loadFinished);
    refreshes(&model_.library().loader, &LibraryLoader::archiveLocationsChanged);
    refreshes(&model_.archiving().destinations, &ArchiveDestinations::destinationChanged);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) refreshWhileOpen();
    });
    connect(&model_.library().loader, &LibraryLoader::loadFinished, this, &PlacesScreen::dropReplaced);
    connect(&picker_, &FolderPicker::chosen, this, [this] { add(picker_.chosenPath()); });
}

void PlacesScreen::open() {
    isOpen_ = true;
    model_.archiving().placeJobs.load();
    refreshWhileOpen();
    Q_EMIT changed();
}

void PlacesScreen::close() {
    isOpen_ = false;
    Q_EMIT changed();
}

void PlacesScreen::refreshWhileOpen() {
    if (isOpen_) model_.library().places.refresh();
}

void PlacesScreen::updateRows() {
    const PlaceJobs& jobs = model_.archiving().placeJobs;
    const QString home = screens::wholeText(model_.context().platform.realUserHomeDirectory());
    const QString left = timeLeft();
    PlaceRowsModel::Records rows;
    for (const ArchivePlace& place : model_.library().places.places()) {
        const PlaceJobs::Job* job = jobs.job(place.root);
        const bool isFirst = job != nullptr && job == &jobs.jobs().front();
        rows.push_back(screens::placeRow({.place = place,
                                          .job = job,
                                          .isWaiting = job != nullptr && !isFirst,
                                          .timeLeftText = isFirst ? left : QString(),
                                          .end = jobs.end(place.root),
                                          .isBusy = model_.archiving().archiveRun.isArchiving(),
                                          .home = home}));
    }
    rows_.replace(std::move(rows));
    Q_EMIT changed();
}

// Of the work that is under way.
QString PlacesScreen::timeLeft() {
    const auto& jobs = model_.archiving().placeJobs.jobs();
    const auto now = RunPace::Moment::clock::now();
    const std::string root = jobs.empty() ? std::string() : jobs.front().root;
    if (root != pacedRoot_) {
        pacedRoot_ = root;
        pace_.start(now);
    }
    if (jobs.empty() || jobs.front().all == 0) return {};
    pace_.report(static_cast<std::int64_t>(jobs.front().done), now);
    const auto left = pace_.timeLeft(static_cast<std::int64_t>(jobs.front().all), now);
    return left ? screens::shownTimeLeft(left) : QString();
}

QString PlacesScreen::summary() const {
    const auto& places = model_.library().places.places();
    if (places.empty()) return {};
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    for (const ArchivePlace& place : places) {
        count += place.count;
        bytes += place.bytes;
    }
    return QStringLiteral("%1 个位置，%2，%3。忘记一个位置只是不再显示它，里面的文件不会动。")
        .arg(screens::shownCount(std::ssize(places)), screens::shownMessageCount(count),
             screens::shownSize(bytes));
}

QString PlacesScreen::emptyText() const {
    if (!model_.library().places.hasLooked()) return QStringLiteral("正在查看归档位置…");
    return model_.library().places.places().empty() ? QStringLiteral("还没有归档位置") : QString();
}

bool PlacesScreen::canVerifyAll() const {
    for (int row = 0; row < rows_.count(); ++row) {
        if (rows_.data(rows_.index(row), PlaceRowsModel::CanVerifyRole).toBool()) return true;
    }
    return false;
}

const ArchivePlace* PlacesScreen::placeAt(int row) const {
    const PlaceRow* found = rows_.record(row);
    return found == nullptr ? nullptr : &found->place;
}

void PlacesScreen::verify(int row) {
    const ArchivePlace* place = placeAt(row);
    const bool can = rows_.data(rows_.index(row), PlaceRowsModel::CanVerifyRole).toBool();
    if (place != nullptr && can)
        model_.archiving().placeJobs.start(place->root, PlaceJobs::Work::verification);
}

void PlacesScreen::verifyAll() {
    for (int row = 0; row < rows_.count(); ++row) verify(row);
}

void PlacesScreen::rebuild(int row) {
    const ArchivePlace* place = placeAt(row);
    const bool can = rows_.data(rows_.index(row), PlaceRowsModel::OffersRebuildRole).toBool();
    if (place != nullptr && can) model_.archiving().placeJobs.start(place->root, PlaceJobs::Work::rebuild);
}

void PlacesScreen::cancelWork(int row) {
    if (const ArchivePlace* place = placeAt(row)) model_.archiving().placeJobs.cancel(place->root);
}

void PlacesScreen::makeDefault(int row) {
    const ArchivePlace* place = placeAt(row);
    if (place == nullptr || model_.archiving().archiveRun.isArchiving()) return;
    model_.archiving().destinations.setTransferDestination(place->root, ArchiveDestinations::Folder::left);
}

void PlacesScreen::showFolder(int row) {
    const ArchivePlace* place = placeAt(row);
    if (place != nullptr && screens::isReachable(*place))
        desktop_.open(QUrl::fromLocalFile(screens::wholeText(place->root) + u'/'));
}

std::string PlacesScreen::findingPath(int row, int finding) const {
    const ArchivePlace* place = placeAt(row);
    const PlaceJobs::End* end = place == nullptr ? nullptr : model_.archiving().placeJobs.end(place->root);
    const auto at = static_cast<std::size_t>(finding);
    if (end == nullptr || finding < 0) return {};
    if (end->work == PlaceJobs::Work::rebuild)
        return at < end->failures.size() ? end->failures[at].path : std::string();
    return at < end->verdict.findings.size() ? end->verdict.findings[at].path : std::string();
}

// A path comes from an index, which may be anybody's.
void PlacesScreen::showFinding(int row, int finding) {
    const std::string path = findingPath(row, finding);
    if (!path.empty() && platform::isSafeRelativePath(path) &&
        desktop_.reveal(screens::wholeText(platform::joinPath(placeAt(row)->root, path))))
        return;
    showFolder(row);
}

void PlacesScreen::copyFindings(int row) {
    const ArchivePlace* place = placeAt(row);
    const PlaceJobs::End* end = place == nullptr ? nullptr : model_.archiving().placeJobs.end(place->root);
    if (end == nullptr) return;
    QStringList lines;
    for (const auto& finding : end->verdict.findings)
        lines += screens::faultText(finding.fault) + u'\t' + screens::wholeText(finding.path);
    for (const auto& failure : end->failures)
        lines += screens::wholeText(failure.reason) + u'\t' + screens::wholeText(failure.path);
    desktop_.copy(lines.join(u'\n'));
}

QString PlacesScreen::forgetTitle(int row) {
    const ArchivePlace* place = placeAt(row);
    if (place == nullptr) return {};
    askedRoot_ = place->root;
    return QStringLiteral("忘记「%1」？").arg(screens::shownLine(place->name));
}

QString PlacesScreen::forgetLine() const {
    const QString line = QStringLiteral(
        "只是不再显示这个位置，里面的文件一个也不会动。拔下后再接上，或重新添加它，就又会回来。");
    const bool isDefault = model_.archiving().destinations.transferDestination() == askedRoot_;
    return isDefault ? line + QStringLiteral("\n它是默认的归档位置，忘记之后归档前要先选一个。") : line;
}

void PlacesScreen::forget() {
    if (askedRoot_.empty()) return;
    model_.forgetLocation(std::exchange(askedRoot_, {}));
    refreshWhileOpen();
}

void PlacesScreen::beginChoice(int row) {
    const ArchivePlace* place = placeAt(row);
    replacedRoot_ = place == nullptr ? std::string() : place->root;
}

void PlacesScreen::addFolder(const QUrl& folder) {
    if (folder.isLocalFile()) add(folder.toLocalFile().toStdString());
}

void PlacesScreen::add(const std::string& path) {
    replacement_ = platform::canonicalPath(path);
    model_.addLocation(path);
}

// The library lists one of two places of the same archive, that which is there. The other isn't needed then;
// a place that holds something else is one more.
void PlacesScreen::dropReplaced() {
    if (replacement_.empty()) return;
    const std::string added = std::exchange(replacement_, {});
    const std::string before = std::exchange(replacedRoot_, {});
    LibraryLoader& library = model_.library().loader;
    const bool isSame =
        !before.empty() && library.location(before) == nullptr && library.location(added) != nullptr;
    if (!isSame || before == added) return;
    const bool wasDefault = model_.archiving().destinations.transferDestination() == before;
    model_.forgetLocation(before);
    if (wasDefault)
        model_.archiving().destinations.setTransferDestination(added, ArchiveDestinations::Folder::left);
}

} // namespace corvane
