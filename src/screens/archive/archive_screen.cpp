#include "screens/archive/archive_screen.h"

#include <algorithm>

#include <QPointer>

#include "listing/archive_capacity.h"
#include "platform/paths.h"
#include "screens/archive/archive_texts.h"
#include "screens/lists/message_lines.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

ArchiveScreen::ArchiveScreen(CorvaneViewModel& model, OrganizeData& data, DesktopActions& desktop,
                             QObject* parent)
  : QObject(parent)
  , model_(model)
  , data_(data)
  , desktop_(desktop)
  , candidates_(model)
  , quickDestinations_(model)
  , folderPicker_(model)
  , progress_(model.archiveRun())
  , prepareTask_(model.context().tasks)
  , copyTask_(model.context().tasks) {
    wire();
}

void ArchiveScreen::wire() {
    const auto destinationReplaced = [this] {
        Q_EMIT destinationChanged();
        Q_EMIT selectionChanged();
    };
    // What was said of a run there doesn't hold for another place.
    connect(&model_.destinations(), &ArchiveDestinations::destinationChanged, this, [this] { setError({}); });
    connect(&model_.destinations(), &ArchiveDestinations::destinationChanged, this, destinationReplaced);
    connect(&model_.destinations(), &ArchiveDestinations::factsChanged, this, destinationReplaced);
    connect(&folderPicker_, &FolderPicker::chosen, this,
            [this] { model_.destinations().setTransferDestination(folderPicker_.chosenPath()); });
    connect(&candidates_, &ArchiveCandidatesModel::selectionSummed, this, &ArchiveScreen::selectionChanged);
    connect(&candidates_, &ArchiveCandidatesModel::loadingChanged, this, &ArchiveScreen::candidatesChanged);
    connect(&data_, &OrganizeData::overviewChanged, this, &ArchiveScreen::candidatesChanged);
    const auto reload = [this] {
        if (stage_ == Confirm && !isPreparing_) candidates_.load();
    };
    connect(&model_.catalog(), &MessageCatalog::availabilityPublished, this, reload);
    connect(&model_.catalog(), &MessageCatalog::archivedMessagesChanged, this, reload);
    connect(&model_.filters(), &ModelFilters::candidateFilterChanged, this, reload);
}

void ArchiveScreen::setStage(Stage stage) {
    stage_ = stage;
    isInBackground_ = false;
    Q_EMIT stageChanged();
}

void ArchiveScreen::setError(const QString& text) {
    if (errorText_ == text) return;
    errorText_ = text;
    Q_EMIT errorChanged();
}

void ArchiveScreen::open(const std::shared_ptr<const SharedTextSet>& ids) {
    open(ArchiveOffer{[ids] { return *ids; }, {}});
}

void ArchiveScreen::open(ArchiveOffer offer) {
    if (stage_ == Running) {
        bringToFront();
        return;
    }
    close();
    setError({});
    isPreparing_ = true;
    yearsBefore_ = model_.filters().archiveFilterYears();
    model_.filters().setArchiveFilterYears(std::move(offer.years));
    quickDestinations_.refreshDetectedDestinations();
    model_.destinations().refreshFacts();
    setStage(Confirm);
    Q_EMIT candidatesChanged();

    prepareTask_.start(
        TaskPriority::userInitiated, std::move(offer.makeIDs),
        [](const std::function<SharedTextSet()>& makeIDs, const TaskHandle&) {
            return std::make_shared<const SharedTextSet>(makeIDs());
        },
        [this](std::shared_ptr<const SharedTextSet> offered) { takeOffer(std::move(offered)); });
}

void ArchiveScreen::takeOffer(std::shared_ptr<const SharedTextSet> offered) {
    isPreparing_ = false;
    model_.candidates().setCandidateOffer(std::move(offered));
    model_.ticks().selectWholeOffer();
    candidates_.load();
}

// Candidates, years and size were those of one confirmation.
void ArchiveScreen::endConfirmation() {
    prepareTask_.cancel();
    isPreparing_ = false;
    candidates_.clear();
    model_.candidates().setCandidateOffer(nullptr);
    model_.ticks().selectNoArchiveCandidates();
    model_.filters().setTransferMinimumSize(TransferSizePreset::any);
    model_.filters().setArchiveFilterYears(yearsBefore_);
}

void ArchiveScreen::close() {
    if (stage_ == Closed || stage_ == Running) return;
    const bool isConfirmation = stage_ == Confirm;
    // First, so that nothing is loaded for a sheet that is going.
    setStage(Closed);
    if (isConfirmation) endConfirmation();
}

void ArchiveScreen::start() {
    if (!canStart()) return;
    setError({});
    progress_.start(candidates_.selectedCount());
    setStage(Running);
    model_.archiveSelectedEmails([screen = QPointer(this)](ArchiveRunFlow::RunOutcome outcome) {
        if (screen) screen->takeOutcome(std::move(outcome));
    });
}

void ArchiveScreen::takeOutcome(ArchiveRunFlow::RunOutcome outcome) {
    progress_.stop();
    if (!outcome) {
        setError(screens::wholeText(outcome.error()));
        model_.destinations().refreshFacts();
        setStage(Confirm);
        candidates_.load();
        return;
    }
    result_ = ArchiveResultView::of(*outcome, progress_.total());
    failures_ = std::move(outcome->failures);
    variantWarnings_ = std::move(outcome->variantWarnings);
    setStage(Result);
    endConfirmation();
    Q_EMIT archiveFinished();
}

void ArchiveScreen::cancelRun() {
    if (stage_ != Running) return;
    progress_.setCancelling();
    model_.archiveRun().cancelEmailArchive();
}

void ArchiveScreen::sendToBackground() {
    if (stage_ != Running || isInBackground_) return;
    isInBackground_ = true;
    Q_EMIT stageChanged();
}

void ArchiveScreen::bringToFront() {
    if (!isInBackground_) return;
    isInBackground_ = false;
    Q_EMIT stageChanged();
}

void ArchiveScreen::retryFailed() {
    if (stage_ != Result || failures_.empty()) return;
    auto ids = std::make_shared<SharedTextSet>();
    for (const EmailArchiveFailure& failure : failures_) ids->insert(failure.messageFileURL.path());
    open(ids);
}

void ArchiveScreen::copyFailures() {
    desktop_.copy(screens::failureList(failures_));
}

void ArchiveScreen::copyVariants() {
    desktop_.copy(screens::variantList(variantWarnings_));
}

void ArchiveScreen::copyCandidates() {
    copyTask_.start(TaskPriority::userInitiated,
                    screens::MessageRows{candidates_.messages(), candidates_.selection().rows()},
                    &screens::linesOfRows, [this](const QString& lines) { desktop_.copy(lines); });
}

void ArchiveScreen::chooseDestination(const QUrl& folder) {
    if (folder.isLocalFile())
        model_.destinations().setTransferDestination(folder.toLocalFile().toStdString());
}

DestinationView ArchiveScreen::destination() const {
    return {model_.destinations().transferDestination(), model_.destinations().facts(),
            model_.context().platform};
}

QString ArchiveScreen::destinationName() const {
    return screens::destinationName(destination());
}

QString ArchiveScreen::destinationSymbol() const {
    return screens::destinationSymbol(destination());
}

QString ArchiveScreen::destinationPlace() const {
    return screens::destinationPlace(destination());
}

QUrl ArchiveScreen::destinationFolder() const {
    const auto& path = model_.destinations().transferDestination();
    return QUrl::fromLocalFile(
        screens::wholeText(path.value_or(model_.context().platform.realUserHomeDirectory())));
}

DestinationRemark ArchiveScreen::remark() const {
    return screens::archiveRemark(destination());
}

QString ArchiveScreen::archiveButtonTitle() const {
    return screens::archiveButtonTitle(destination(), candidates_.selectedCount());
}

bool ArchiveScreen::canStart() const {
    return stage_ == Confirm && !isLoading() && destination().path && destination().facts.connected &&
           candidates_.selectedCount() > 0 && !model_.archiveRun().isArchiving();
}

QString ArchiveScreen::archiveSelectionSummary() const {
    return screens::archiveSelectionSummary(candidates_.selectedCount(), candidates_.selectedBytes());
}

QString ArchiveScreen::archiveScopeTitle() const {
    return screens::archiveScopeTitle(model_.filters().archiveFilterYears());
}

DeletionSafety ArchiveScreen::safety() const {
    return data_.deletionSafety(std::nullopt, model_.filters().archiveFilterYears());
}

QString ArchiveScreen::archiveEmptyTitle() const {
    return screens::archiveEmptyTitle(safety());
}

QString ArchiveScreen::archiveEmptyDescription() const {
    return screens::archiveEmptyDescription(archiveScopeTitle(), safety());
}

QString ArchiveScreen::tickedText() const {
    return QStringLiteral("已勾选 %1，共 %2")
        .arg(screens::shownMessageCount(candidates_.selectedCount()),
             screens::shownMessageCount(candidates_.count()));
}

QString ArchiveScreen::spaceText() const {
    return screens::archiveSpaceText(candidates_.selectedBytes(), destination().facts.availableBytes);
}

bool ArchiveScreen::isSpaceShort() const {
    const auto& available = destination().facts.availableBytes;
    return available && *available < estimatedArchiveBytes(static_cast<double>(candidates_.selectedBytes()));
}

QString ArchiveScreen::footnote() const {
    const DestinationView view = destination();
    return !view.facts.connected && view.isOnRemovableDisk()
               ? QStringLiteral("归档位置所在的 U 盘 / 外置盘未连接，请插入后再归档。")
               : QStringLiteral("每封写好后都会从磁盘重新读出核对");
}

QStringList ArchiveScreen::sizeTitles() const {
    return {QStringLiteral("不限"), QStringLiteral("10 MB"), QStringLiteral("50 MB"),
            QStringLiteral("100 MB")};
}

int ArchiveScreen::minimumSize() const {
    const auto known =
        std::find(allSizePresets.begin(), allSizePresets.end(), model_.filters().transferMinimumSize());
    return static_cast<int>(known - allSizePresets.begin());
}

void ArchiveScreen::setMinimumSize(int preset) {
    if (stage_ != Confirm || preset < 0 || preset >= static_cast<int>(allSizePresets.size())) return;
    model_.filters().setTransferMinimumSize(allSizePresets[static_cast<std::size_t>(preset)]);
    Q_EMIT candidatesChanged();
}

} // namespace corvane
