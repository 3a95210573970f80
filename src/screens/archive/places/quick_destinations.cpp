#include "screens/archive/places/quick_destinations.h"

#include <algorithm>

#include "locations/places/place_looks.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"
#include "screens/archive/places/folder_obstacle.h"
#include "screens/texts/destination_texts.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

// An archive's years don't go among the user's own folders.
constexpr const char* ownFolderName = "邮件归档";

QString shownFolder(const std::string& path, const std::string& home) {
    if (path == home) return QStringLiteral("个人文件夹");
    return screens::shownPath(screens::wholeText(path), screens::wholeText(home));
}

} // namespace

QuickDestinations::QuickDestinations(CorvaneViewModel& model, QObject* parent)
  : RecordListModel(parent)
  , model_(model)
  , detectionTask_(model.context().tasks)
  , useTask_(model.context().tasks) {
    connect(&model.archiving().destinations, &ArchiveDestinations::destinationChanged, this, [this] {
        // What was asked for another place doesn't matter any more.
        useTask_.cancel();
        setRefusal({});
        show();
    });
    connect(&model.archiving().destinations, &ArchiveDestinations::factsChanged, this,
            &QuickDestinations::show);
    show();
}

QHash<int, QByteArray> QuickDestinations::roleNames() const {
    return {{NameRole, "name"},
            {DetailRole, "detail"},
            {SymbolRole, "symbol"},
            {ChosenRole, "chosen"},
            {ConnectedRole, "connected"}};
}

QVariant QuickDestinations::value(const QuickDestination& destination, int role) const {
    switch (role) {
    case NameRole:
        return destination.name;
    case DetailRole:
        return destination.isConnected ? destination.detail : QStringLiteral("未连接");
    case SymbolRole:
        return destination.symbol;
    case ChosenRole:
        return destination.isChosen;
    case ConnectedRole:
        return destination.isConnected;
    default:
        return {};
    }
}

bool QuickDestinations::hasQuickDestinations() const {
    return !detectedProviders_.empty() || !detectedVolumes_.empty() ||
           !model_.archiving().destinations.facts().rememberedManualDestinations.empty();
}

// The archive that lies there already, so that a press doesn't begin a second one beside it.
std::string QuickDestinations::archiveFolderIn(const std::string& place) const {
    const auto& chosen = model_.archiving().destinations.transferDestination();
    if (chosen && platform::isAtOrBelow(*chosen, place)) return *chosen;
    for (const ArchiveLocation& location : model_.library().loader.archiveLocations()) {
        if (location.isConnected && platform::isAtOrBelow(location.rootPath, place)) return location.rootPath;
    }
    return platform::joinPath(place, ownFolderName);
}

QuickDestination QuickDestinations::rowOf(const CloudStorageProvider& place) const {
    const auto& chosen = model_.archiving().destinations.transferDestination();
    QuickDestination row;
    row.path = archiveFolderIn(place.path);
    row.name = screens::shownLine(place.name);
    row.detail = screens::shownLine(place.detail.value_or("云盘"));
    row.symbol = QString::fromStdString(place.icon);
    row.isChosen = chosen && platform::isAtOrBelow(*chosen, place.path);
    row.isConnected =
        place.hasAnswered && (!row.isChosen || model_.archiving().destinations.facts().connected);
    return row;
}

QuickDestination QuickDestinations::rowOfFolder(const std::string& path) const {
    const ArchiveDestinations& destinations = model_.archiving().destinations;
    const bool isChosen = destinations.transferDestination() == path;
    const DestinationFacts facts = isChosen ? destinations.facts() : DestinationFacts();
    const std::optional<std::string> folder = path;
    const DestinationView view{folder, facts, model_.context().platform};
    return {path,
            screens::destinationName(view),
            shownFolder(std::string(platform::parentPath(path)),
                        model_.context().platform.realUserHomeDirectory()),
            screens::destinationSymbol(view),
            isChosen,
            facts.connected};
}

std::vector<QuickDestination> QuickDestinations::makeRows() const {
    std::vector<QuickDestination> rows;
    rows.reserve(detectedProviders_.size() + detectedVolumes_.size());
    for (const CloudStorageProvider& place : detectedProviders_) rows.push_back(rowOf(place));
    for (const CloudStorageProvider& place : detectedVolumes_) rows.push_back(rowOf(place));
    const auto add = [&](const std::string& path) {
        const auto isKnown = [&](const QuickDestination& row) { return row.path == path; };
        if (std::none_of(rows.begin(), rows.end(), isKnown)) rows.push_back(rowOfFolder(path));
    };
    for (const std::string& path : model_.archiving().destinations.facts().rememberedManualDestinations)
        add(path);
    if (const auto& chosen = model_.archiving().destinations.transferDestination()) add(*chosen);
    return rows;
}

void QuickDestinations::show() {
    replace(makeRows());
    Q_EMIT placesChanged();
}

void QuickDestinations::refreshDetectedDestinations() {
    consoleLine("[HangTrace] settings refreshDetectedDestinations begin(main)");

    struct Job {
        const platform::Platform& platform;
        platform::FileLayer& files;
    };

    struct Found {
        std::vector<CloudStorageProvider> providers;
        std::vector<CloudStorageProvider> volumes;
    };

    detectionTask_.start(
        TaskPriority::userInitiated, Job{model_.context().platform, model_.context().support.files()},
        [](const Job& job, const TaskHandle& task) {
            PlaceLooks looks(job.platform, job.files, task.stopToken());
            return Found{detectCloudStorage(looks, job.platform), detectRemovableVolumes(job.platform)};
        },
        [this](Found found) {
            detectedProviders_ = std::move(found.providers);
            detectedVolumes_ = std::move(found.volumes);
            show();
            consoleLine("[HangTrace] settings refreshDetectedDestinations applied(main)");
        });
}

void QuickDestinations::chooseFolder(const QUrl& folder) {
    if (folder.isLocalFile()) use(folder.toLocalFile().toStdString());
}

void QuickDestinations::use(const std::string& path) {
    struct Job {
        const platform::Platform& platform;
        platform::FileLayer& files;
        std::string path;
    };

    setRefusal({});
    useTask_.start(
        TaskPriority::userInitiated, Job{model_.context().platform, model_.context().support.files(), path},
        [](const Job& job, const TaskHandle& task) {
            PlaceLooks looks(job.platform, job.files, task.stopToken());
            return screens::archiveFolderObstacle(job.path, true, looks);
        },
        [this, path](const QString& obstacle) {
            if (obstacle.isEmpty()) return model_.archiving().destinations.setTransferDestination(path);
            setRefusal(QStringLiteral("「%1」：")
                           .arg(screens::shownLine(std::string(platform::lastPathComponent(path)))) +
                       obstacle);
        });
}

void QuickDestinations::setRefusal(const QString& text) {
    if (refusal_ == text) return;
    refusal_ = text;
    Q_EMIT refusalChanged();
}

void QuickDestinations::choose(int row) {
    const QuickDestination* const chosen = record(row);
    if (chosen == nullptr || !chosen->isConnected || chosen->isChosen) return;
    use(chosen->path);
}

} // namespace corvane
