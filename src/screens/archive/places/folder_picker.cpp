#include "screens/archive/places/folder_picker.h"

#include <algorithm>
#include <memory>
#include <system_error>
#include <variant>

#include "locations/places/destination_detection.h"
#include "locations/places/folder_facts.h"
#include "platform/paths.h"
#include "screens/archive/places/folder_obstacle.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

// Longer than any path that the system takes.
constexpr qsizetype pathLimit = 5000;

// What a look at the disk is about, and what it goes through.
template <class Subject>
struct LookJob {
    const platform::Platform& platform;
    platform::FileLayer& files;
    Subject about;
};

// Of more folders nobody reads how much lies in them, and each may hang.
constexpr std::size_t mostLookedInto = 200;

// Of a folder that doesn't answer.
FolderFacts unansweredFacts() {
    FolderFacts facts;
    facts.error = std::make_error_code(std::errc::timed_out);
    return facts;
}

struct TakeJob {
    std::string path;
    bool makes = false;
};

QString shownFolderPath(const std::string& path) {
    return screens::shownLine(path, pathLimit);
}

} // namespace

FolderPicker::FolderPicker(CorvaneViewModel& model, Look look, QObject* parent)
  : QAbstractListModel(parent)
  , model_(model)
  , look_(look)
  , task_(model.context().tasks)
  , placesTask_(model.context().tasks)
  , lookTask_(model.context().tasks)
  , insideTask_(model.context().tasks) {}

int FolderPicker::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(folders_.size());
}

QVariant FolderPicker::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const auto row = static_cast<std::size_t>(index.row());
    if (role == InsideRole) return row < insides_.size() ? insides_[row] : QString();
    return role == NameRole ? folders_[row].shown : QVariant();
}

QHash<int, QByteArray> FolderPicker::roleNames() const {
    return {{NameRole, "name"}, {InsideRole, "inside"}};
}

QString FolderPicker::pathText() const {
    return shownFolderPath(path_);
}

QVariantList FolderPicker::places() const {
    QVariantList shown;
    for (const Place& place : places_) {
        shown << QVariantMap{{QStringLiteral("name"), place.name},
                             {QStringLiteral("detail"), place.detail},
                             {QStringLiteral("symbol"), place.symbol},
                             {QStringLiteral("chosen"), place.path == path_}};
    }
    return shown;
}

std::string FolderPicker::target(int row) const {
    return row >= 0 && row < rowCount()
               ? platform::joinPath(path_, folders_[static_cast<std::size_t>(row)].name)
               : path_;
}

QString FolderPicker::targetText(int row) const {
    return shownFolderPath(target(row));
}

int FolderPicker::rowStartingWith(const QString& text, int from) const {
    const int count = rowCount();
    for (int step = 0; step < count && !text.isEmpty(); ++step) {
        const int row = (std::max(from, 0) + step) % count;
        if (folders_[static_cast<std::size_t>(row)].shown.startsWith(text, Qt::CaseInsensitive)) return row;
    }
    return -1;
}

void FolderPicker::begin() {
    findPlaces();
    // What was found out when the folders were last shown doesn't hold any more.
    setChoice(awaitedChoice(question()));
    const std::string home = model_.context().platform.realUserHomeDirectory();
    const auto& present = model_.archiving().destinations.transferDestination();
    const std::string start = present ? std::string(platform::parentPath(*present)) : home;
    list([start, home](PlaceLooks& looks) {
        FolderListing listing = listWithin(looks, start, [start, home](PlaceLook& look) {
            const std::string archive = lookIntoFolder(start, {}).archiveRoot;
            const std::string outside = archive.empty() ? start : std::string(platform::parentPath(archive));
            return listNearestFolder(outside, home, look);
        });
        if (listing.error != std::errc::timed_out || start == home) return listing;
        return listWithin(looks, home, [home](PlaceLook& look) { return listFolders(home, look); });
    });
}

void FolderPicker::open(const std::string& path) {
    list([path](PlaceLooks& looks) {
        return listWithin(looks, path, [path](PlaceLook& look) { return listFolders(path, look); });
    });
}

int FolderPicker::firstRow() const {
    const auto& present = model_.archiving().destinations.transferDestination();
    const bool isHere = present && platform::parentPath(*present) == path_;
    const std::string wanted =
        isHere ? std::string(platform::lastPathComponent(*present)) : proposedFolderName;
    for (std::size_t row = 0; row < folders_.size(); ++row) {
        if (folders_[row].name == wanted) return static_cast<int>(row);
    }
    return -1;
}

FolderQuestion FolderPicker::question() const {
    return {target(row_), model_.context().platform.realUserHomeDirectory(), row_ < 0};
}

void FolderPicker::select(int row) {
    row_ = row;
    setChoice(awaitedChoice(question()));
    if (path_.empty()) return lookTask_.cancel();

    struct Asked {
        Look look;
        FolderQuestion question;
    };

    lookTask_.start(
        TaskPriority::userInitiated,
        LookJob<Asked>{model_.context().platform, model_.context().support.files(), {look_, question()}},
        [](const LookJob<Asked>& job, const TaskHandle& task) {
            PlaceLooks looks(job.platform, job.files, task.stopToken());
            const Asked& asked = job.about;
            const auto choice =
                looks.ask<FolderChoice>(asked.question.path, [asked, stop = task.stopToken()](PlaceLook&) {
                    return asked.look(asked.question, stop);
                });
            return choice.value_or(folderChoice(asked.question, unansweredFacts()));
        },
        [this](FolderChoice choice) { setChoice(std::move(choice)); });
}

void FolderPicker::setChoice(FolderChoice choice) {
    if (choice == choice_) return;
    choice_ = std::move(choice);
    Q_EMIT choiceChanged();
}

// How much lies in each folder comes when it is known.
void FolderPicker::lookInside() {
    struct InsideJob {
        std::string path;
        std::vector<std::string> names;
    };

    LookJob<InsideJob> job{model_.context().platform, model_.context().support.files(), {path_, {}}};
    for (const auto& folder : folders_) {
        if (job.about.names.size() == mostLookedInto) break;
        job.about.names.push_back(folder.name);
    }
    insideTask_.start(
        TaskPriority::utility, std::move(job),
        [](const LookJob<InsideJob>& wanted, const TaskHandle& task) {
            PlaceLooks looks(wanted.platform, wanted.files, task.stopToken());
            std::vector<QString> insides;
            for (const std::string& name : wanted.about.names) {
                if (task.isCancelled()) break;
                const std::string path = platform::joinPath(wanted.about.path, name);
                const auto facts = looks.ask<FolderFacts>(path, [path, stop = task.stopToken()](PlaceLook&) {
                    return lookIntoFolder(path, {}, stop);
                });
                insides.push_back(folderInsideText(path, facts.value_or(unansweredFacts())));
            }
            return insides;
        },
        [this](std::vector<QString> insides) {
            insides_ = std::move(insides);
            if (!insides_.empty())
                Q_EMIT dataChanged(index(0), index(static_cast<int>(insides_.size()) - 1), {InsideRole});
        });
}

void FolderPicker::openRow(int row) {
    if (row < 0 || row >= rowCount()) return;
    open(target(row));
}

void FolderPicker::openPlace(int place) {
    if (place < 0 || place >= static_cast<int>(places_.size())) return;
    open(places_[static_cast<std::size_t>(place)].path);
}

void FolderPicker::openTyped(const QString& text) {
    // A name that can't be shown as it is would lead elsewhere when it is read back.
    if (text.isEmpty() || text == pathText()) return;
    open(typedFolder(text.toStdString(), path_, model_.context().platform.realUserHomeDirectory()));
}

void FolderPicker::goUp() {
    if (!canGoUp()) return;
    open(std::string(platform::parentPath(path_)));
}

void FolderPicker::makeFolder(const QString& name) {
    list(
        [parent = path_, wanted = name.toStdString()](PlaceLooks& looks) {
            return listWithin(looks, parent, [parent, wanted](PlaceLook& look) {
                return corvane::makeFolder(parent, wanted, look);
            });
        },
        screens::FolderAction::make);
}

void FolderPicker::choose(int row) {
    takeFolder(target(row), false);
}

void FolderPicker::use() {
    if (choice_.canUse) takeFolder(choice_.path, choice_.makes);
}

void FolderPicker::takeFolder(std::string path, bool makes) {
    // Nothing is written there.
    if (look_ != &archiveFolderChoice) {
        chosenPath_ = std::move(path);
        Q_EMIT chosen();
        return;
    }

    setError({});
    setBusy(true);
    task_.start(
        TaskPriority::userInitiated,
        LookJob<TakeJob>{model_.context().platform, model_.context().support.files(), {path, makes}},
        [](const LookJob<TakeJob>& job, const TaskHandle& task) {
            PlaceLooks looks(job.platform, job.files, task.stopToken());
            return screens::archiveFolderObstacle(job.about.path, job.about.makes, looks);
        },
        [this, path](const QString& obstacle) {
            setBusy(false);
            setError(obstacle);
            if (!obstacle.isEmpty()) return;
            chosenPath_ = path;
            Q_EMIT chosen();
        });
}

void FolderPicker::list(Job job, screens::FolderAction action) {
    struct Listed {
        std::string path;
        std::vector<screens::NamedFolder> folders;
        std::error_code error;
    };

    setError({});
    setBusy(true);
    task_.start(
        TaskPriority::userInitiated,
        LookJob<Job>{model_.context().platform, model_.context().support.files(), std::move(job)},
        [](const LookJob<Job>& work, const TaskHandle& task) {
            PlaceLooks looks(work.platform, work.files, task.stopToken());
            FolderListing listing = work.about(looks);
            return Listed{std::move(listing.path), screens::sortedFolders(std::move(listing.names)),
                          listing.error};
        },
        [this, action](Listed listed) {
            setBusy(false);
            setError(screens::folderErrorText(listed.error, action));
            if (listed.error) return;
            show(std::move(listed.path), std::move(listed.folders));
            if (action == screens::FolderAction::make) Q_EMIT folderMade();
        });
}

void FolderPicker::show(std::string path, std::vector<screens::NamedFolder> folders) {
    beginResetModel();
    path_ = std::move(path);
    folders_ = std::move(folders);
    insides_.clear();
    row_ = -1;
    endResetModel();
    lookInside();
    Q_EMIT listed();
    Q_EMIT placesChanged();
}

void FolderPicker::findPlaces() {
    placesTask_.start(
        TaskPriority::userInitiated,
        LookJob<std::monostate>{model_.context().platform, model_.context().support.files(), {}},
        [](const LookJob<std::monostate>& job, const TaskHandle& task) {
            PlaceLooks looks(job.platform, job.files, task.stopToken());
            return usualPlaces(looks, job.platform);
        },
        [this](std::vector<Place> places) {
            places_ = std::move(places);
            Q_EMIT placesChanged();
        });
}

std::vector<FolderPicker::Place> FolderPicker::usualPlaces(PlaceLooks& looks,
                                                           const platform::Platform& platform) {
    std::vector<Place> places = {
        {platform.realUserHomeDirectory(), QStringLiteral("个人文件夹"), {}, QStringLiteral("folder")}};
    const auto add = [&](const std::vector<CloudStorageProvider>& found, const char* kind) {
        for (const CloudStorageProvider& place : found) {
            places.push_back({place.path, screens::shownLine(place.name),
                              place.hasAnswered ? screens::shownLine(place.detail.value_or(kind))
                                                : QStringLiteral("没有响应"),
                              QString::fromStdString(place.icon)});
        }
    };
    add(detectCloudStorage(looks, platform), "云盘");
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
