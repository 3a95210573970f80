#include "screens/archive/places/folder_picker.h"

#include <algorithm>
#include <memory>

#include "locations/destination_detection.h"
#include "platform/paths.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

// Longer than any path that the system takes.
constexpr qsizetype pathLimit = 5000;

QString shownFolderPath(const std::string& path) {
    return screens::shownLine(path, pathLimit);
}

} // namespace

FolderPicker::FolderPicker(CorvaneViewModel& model, QObject* parent)
  : QAbstractListModel(parent)
  , model_(model)
  , task_(model.context().tasks)
  , placesTask_(model.context().tasks) {}

int FolderPicker::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.folders.size());
}

QVariant FolderPicker::data(const QModelIndex& index, int role) const {
    if (role != NameRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    return shown_.folders[static_cast<std::size_t>(index.row())].name;
}

QHash<int, QByteArray> FolderPicker::roleNames() const {
    return {{NameRole, "name"}};
}

QString FolderPicker::pathText() const {
    return shownFolderPath(shown_.path);
}

QVariantList FolderPicker::places() const {
    QVariantList shown;
    for (const Place& place : places_) {
        shown << QVariantMap{{QStringLiteral("name"), place.name},
                             {QStringLiteral("detail"), place.detail},
                             {QStringLiteral("symbol"), place.symbol},
                             {QStringLiteral("chosen"), place.path == shown_.path}};
    }
    return shown;
}

std::string FolderPicker::target(int row) const {
    return row >= 0 && row < rowCount() ? shown_.folders[static_cast<std::size_t>(row)].path : shown_.path;
}

QString FolderPicker::targetText(int row) const {
    return shownFolderPath(target(row));
}

int FolderPicker::rowStartingWith(const QString& text, int from) const {
    const int count = rowCount();
    for (int step = 0; step < count && !text.isEmpty(); ++step) {
        const int row = (std::max(from, 0) + step) % count;
        if (shown_.folders[static_cast<std::size_t>(row)].name.startsWith(text, Qt::CaseInsensitive))
            return row;
    }
    return -1;
}

void FolderPicker::begin() {
    findPlaces();
    const std::string home = model_.context().platform.realUserHomeDirectory();
    const std::string start = model_.destinations().transferDestination().value_or(home);
    list(
        [start, home](const std::stop_token& stop) { return screens::listNearestFolder(start, home, stop); });
}

void FolderPicker::openRow(int row) {
    if (row < 0 || row >= rowCount()) return;
    list([path = target(row)](const std::stop_token& stop) { return screens::listFolders(path, stop); });
}

void FolderPicker::openPlace(int place) {
    if (place < 0 || place >= static_cast<int>(places_.size())) return;
    const std::string path = places_[static_cast<std::size_t>(place)].path;
    list([path](const std::stop_token& stop) { return screens::listFolders(path, stop); });
}

void FolderPicker::openTyped(const QString& text) {
    // A name that can't be shown as it is would lead elsewhere when it is read back.
    if (text.isEmpty() || text == pathText()) return;
    const std::string path = screens::typedFolder(text.toStdString(), shown_.path,
                                                  model_.context().platform.realUserHomeDirectory());
    list([path](const std::stop_token& stop) { return screens::listFolders(path, stop); });
}

void FolderPicker::goUp() {
    if (!canGoUp()) return;
    const std::string path(platform::parentPath(shown_.path));
    list([path](const std::stop_token& stop) { return screens::listFolders(path, stop); });
}

void FolderPicker::makeFolder(const QString& name) {
    list([parent = shown_.path, wanted = name.toStdString()](
             const std::stop_token&) { return screens::makeFolder(parent, wanted); },
         true);
}

void FolderPicker::choose(int row) {
    setError({});
    setBusy(true);
    task_.start(
        TaskPriority::userInitiated, target(row),
        [](const std::string& path, const TaskHandle&) { return screens::obstacleToWriting(path); },
        [this, path = target(row)](const QString& obstacle) {
            setBusy(false);
            setError(obstacle);
            if (!obstacle.isEmpty()) return;
            chosenPath_ = path;
            Q_EMIT chosen();
        });
}

void FolderPicker::list(Job job, bool makesFolder) {
    setError({});
    setBusy(true);
    task_.start(
        TaskPriority::userInitiated, std::move(job),
        [](const Job& listing, const TaskHandle& task) { return listing(task.stopToken()); },
        [this, makesFolder](FolderListing listing) {
            const bool isMade = makesFolder && listing.error.isEmpty();
            take(std::move(listing));
            if (isMade) Q_EMIT folderMade();
        });
}

void FolderPicker::take(FolderListing listing) {
    setBusy(false);
    if (!listing.error.isEmpty()) {
        setError(listing.error);
        return;
    }
    beginResetModel();
    shown_ = std::move(listing);
    endResetModel();
    Q_EMIT listed();
    Q_EMIT placesChanged();
}

void FolderPicker::findPlaces() {
    struct PlacesJob {
        const platform::Platform& platform;
    };

    placesTask_.start(
        TaskPriority::userInitiated, PlacesJob{model_.context().platform},
        [](const PlacesJob& job, const TaskHandle&) { return usualPlaces(job.platform); },
        [this](std::vector<Place> places) {
            places_ = std::move(places);
            Q_EMIT placesChanged();
        });
}

std::vector<FolderPicker::Place> FolderPicker::usualPlaces(const platform::Platform& platform) {
    std::vector<Place> places = {
        {platform.realUserHomeDirectory(), QStringLiteral("个人文件夹"), {}, QStringLiteral("folder")}};
    const auto add = [&](const std::vector<CloudStorageProvider>& found, const char* kind) {
        for (const CloudStorageProvider& place : found) {
            places.push_back({place.path, screens::shownLine(place.name),
                              screens::shownLine(place.detail.value_or(kind)),
                              QString::fromStdString(place.icon)});
        }
    };
    add(detectCloudStorage(platform), "云盘");
    add(detectRemovableVolumes(platform), "U 盘 / 外置盘");
    places.push_back({"/", QStringLiteral("本机磁盘"), {}, QStringLiteral("externaldrive")});
    return places;
}

void FolderPicker::setBusy(bool busy) {
    if (isBusy_ == busy) return;
    isBusy_ = busy;
    Q_EMIT busyChanged();
}

void FolderPicker::setError(const QString& text) {
    if (errorText_ == text) return;
    errorText_ = text;
    Q_EMIT errorChanged();
}

} // namespace corvane
