#include "screens/shell/sidebar/activity.h"

#include <chrono>
#include <cstdint>
#include <utility>

#include "screens/texts/shown_figures.h"
#include "screens/texts/window_places.h"

namespace corvane {

namespace {

constexpr std::chrono::seconds changePause(1);

double fractionOf(const ProofProgress& progress) {
    return progress.total == 0
               ? 0
               : static_cast<double>(progress.completed) / static_cast<double>(progress.total);
}

template <class Progress>
QString figureOf(const Progress& progress) {
    if (progress.total == 0) return {}; // not counted yet
    return QStringLiteral("%1 / %2").arg(screens::shownCount(progress.completed),
                                         screens::shownCount(progress.total));
}

} // namespace

Activity::Activity(CorvaneViewModel& model, std::chrono::milliseconds loadPatience, QObject* parent)
  : QObject(parent)
  , model_(model)
  , loadPatience_(loadPatience) {
    pause_.setSingleShot(true);
    pause_.setInterval(changePause);
    connect(&pause_, &QTimer::timeout, this, [this] { show(present()); });
    connect(&model.mail().scanFlow, &ScanFlow::stateChanged, this, &Activity::update);
    connect(&model.mail().catalog, &MessageCatalog::summaryChanged, this, &Activity::update);
    connect(&model.archiving().archiveRun, &ArchiveRunFlow::progressChanged, this, &Activity::update);
    connect(&model.library().bodyTexts, &BodyTexts::bodyIndexProgressChanged, this, &Activity::update);
    connect(&model.archiving().proof, &ProofFlow::progressChanged, this, &Activity::update);
    connect(&model.archiving().placeJobs, &PlaceJobs::changed, this, &Activity::update);
    connect(&model.library().loader, &LibraryLoader::loadStarted, this, &Activity::handleLoadStart);
    connect(&model.library().loader, &LibraryLoader::loadFinished, this, &Activity::update);
    handleLoadStart();
}

void Activity::handleLoadStart() {
    loadClock_.start();
    QTimer::singleShot(loadPatience_, this, &Activity::update);
    update();
}

bool Activity::loadLasts() const {
    return model_.library().loader.isLoading() && loadClock_.elapsed() >= loadPatience_.count();
}

Activity::State Activity::placeWork(const PlaceJobs::Job& job) {
    const QString title = job.work == PlaceJobs::Work::verification ? QStringLiteral("正在校验归档")
                                                                    : QStringLiteral("正在重建索引");
    const auto done = static_cast<std::int64_t>(job.done);
    const auto all = static_cast<std::int64_t>(job.all);
    if (all == 0) return {title, {}, placesKey(), 0, true};
    return {title, QStringLiteral("%1 / %2").arg(screens::shownCount(done), screens::shownCount(all)),
            placesKey(), static_cast<double>(done) / static_cast<double>(all), false};
}

Activity::State Activity::present() const {
    const QString home = screens::textsOf(SidebarPlace::home).key;
    if (model_.archiving().archiveRun.isArchiving()) {
        const EmailArchiveProgress progress =
            model_.archiving().archiveRun.emailArchiveProgress().value_or(EmailArchiveProgress());
        return {QStringLiteral("正在归档"), figureOf(progress), home, progress.fraction(), false};
    }
    if (model_.mail().scanFlow.state().isScanning()) {
        // Of the first messages nothing is known for a while.
        const std::int64_t scanned = model_.mail().catalog.summary().scannedMessages;
        return {QStringLiteral("正在扫描 Mail…"),
                scanned > 0 ? screens::shownMessageCount(scanned) : QString(), home, 0, true};
    }
    if (const auto& progress = model_.library().bodyTexts.bodyIndexProgress())
        return {QStringLiteral("正在准备正文预览"), figureOf(*progress), home, progress->fraction(), false};
    if (const auto& progress = model_.archiving().proof.progress())
        return {QStringLiteral("正在逐字节核对"), figureOf(*progress), home, fractionOf(*progress), false};
    if (!model_.archiving().placeJobs.jobs().empty())
        return placeWork(model_.archiving().placeJobs.jobs().front());
    if (loadLasts()) return {QStringLiteral("正在读取归档库"), {}, home, 0, true};
    return {};
}

void Activity::update() {
    State state = present();
    // Another work, or its end, is shown at once.
    if (state.title != shown_.title) {
        show(std::move(state));
    } else if (running() && !pause_.isActive()) {
        pause_.start();
    }
}

void Activity::show(State state) {
    if (state == shown_) return;
    shown_ = std::move(state);
    Q_EMIT changed();
}

} // namespace corvane
