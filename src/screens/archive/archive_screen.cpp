#include "screens/archive/archive_screen.h"

#include <algorithm>
#include <utility>

#include <QPointer>

#include "screens/archive/archive_texts.h"
#include "screens/texts/partial_mail.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

ArchiveRequest ArchiveRequest::of(std::shared_ptr<const SharedTextSet> ids) {
    return {[ids = std::move(ids)] { return *ids; }, {}, true};
}

ArchiveScreen::ArchiveScreen(CorvaneViewModel& model, OrganizeData& data, DesktopActions& desktop,
                             QObject* parent)
  : QObject(parent)
  , model_(model)
  , data_(data)
  , candidates_(model, desktop)
  , place_(model, desktop)
  , progress_(model.archiving().archiveRun)
  , outcome_(desktop)
  , prepareTask_(model.context().tasks) {
    wire();
}

void ArchiveScreen::wire() {
    // What was said of a run there doesn't hold for another place.
    connect(&model_.archiving().destinations, &ArchiveDestinations::destinationChanged, this,
            [this] { setError({}); });
    connect(&place_, &DestinationChoice::changed, this, &ArchiveScreen::confirmationChanged);
    connect(&background_, &BackgroundRun::changed, this, &ArchiveScreen::stageChanged);
    connect(&background_, &BackgroundRun::endWanted, this, &ArchiveScreen::showEnd);
    connect(&candidates_, &ArchiveCandidatesModel::selectionSummed, this,
            &ArchiveScreen::confirmationChanged);
    connect(&candidates_, &ArchiveCandidatesModel::loadingChanged, this, &ArchiveScreen::confirmationChanged);
    connect(&data_, &OrganizeData::overviewChanged, this, &ArchiveScreen::confirmationChanged);
    const auto reload = [this] {
        if (stage_ == Confirm && !isPreparing_) candidates_.load();
    };
    connect(&model_.mail().catalog, &MessageCatalog::availabilityPublished, this, reload);
    connect(&model_.mail().catalog, &MessageCatalog::archivedMessagesChanged, this, reload);
    connect(&model_.mail().filters, &ModelFilters::candidateFilterChanged, this, reload);
    connect(&model_.mail().filters, &ModelFilters::scopeCleared, this, [this] { yearsBefore_.clear(); });
}

void ArchiveScreen::setStage(Stage stage) {
    stage_ = stage;
    background_.comeToFront();
    Q_EMIT stageChanged();
}

void ArchiveScreen::setError(const QString& text) {
    if (errorText_ == text) return;
    errorText_ = text;
    Q_EMIT errorChanged();
}

void ArchiveScreen::open(ArchiveRequest request) {
    if (stage_ == Running) {
        background_.bringToFront();
        return;
    }
    if (stage_ == Confirm) background_.forgetEnd();
    close();
    setError({});
    isOfChosenMail_ = request.isOfChosenMail;
    isPreparing_ = true;
    yearsBefore_ = model_.mail().filters.candidates().archiveFilterYears;
    model_.mail().filters.set(&CandidateFilters::archiveFilterYears, std::move(request.years));
    place_.refresh();
    setStage(Confirm);
    Q_EMIT confirmationChanged();
    prepareTask_.start(
        TaskPriority::userInitiated, std::move(request.makeIDs),
        [](const std::function<SharedTextSet()>& makeIDs, const TaskHandle&) {
            return std::make_shared<const SharedTextSet>(makeIDs());
        },
        [this](std::shared_ptr<const SharedTextSet> ids) { showCandidates(std::move(ids)); });
}

void ArchiveScreen::showCandidates(std::shared_ptr<const SharedTextSet> requested) {
    isPreparing_ = false;
    model_.archiving().candidates.setCandidateOffer(std::move(requested));
    model_.archiving().ticks.selectWholeOffer();
    candidates_.load();
}

// Candidates, years and size were those of one confirmation.
void ArchiveScreen::endConfirmation() {
    prepareTask_.cancel();
    isPreparing_ = false;
    candidates_.clear();
    model_.archiving().candidates.setCandidateOffer(nullptr);
    model_.archiving().ticks.selectNoArchiveCandidates();
    model_.mail().filters.setTransferMinimumSize(TransferSizePreset::any);
    model_.mail().filters.set(&CandidateFilters::archiveFilterYears, yearsBefore_);
}

void ArchiveScreen::close() {
    if (stage_ == Closed || stage_ == Running) return;
    const bool isConfirmation = stage_ == Confirm;
    if (stage_ == Result) forgetRun();
    // First, so that nothing is loaded for a sheet that is going.
    setStage(Closed);
    if (isConfirmation) endConfirmation();
}

void ArchiveScreen::start() {
    if (!canStart()) return;
    setError({});
    runCandidates_ = candidates_.records();
    runSelection_ = model_.archiving().ticks.selectedArchiveMessageIDs();
    progress_.start(candidates_.selectedCount());
    background_.begin();
    setStage(Running);
    model_.archiveSelectedEmails([screen = QPointer(this)](ArchiveRunFlow::RunOutcome outcome) {
        if (screen) screen->handleRunEnd(std::move(outcome));
    });
}

// Where another place can be chosen. What was written before stays and is found again.
void ArchiveScreen::handleRunFailure(const QString& error) {
    const std::int64_t done = progress_.completed();
    setError(done == 0 ? error
                       : error + QStringLiteral("\n\n出错前已处理 %1。写好的文件还在归档位置，下次归档会"
                                                "认出它们，不会重写。")
                                     .arg(screens::shownMessageCount(done)));
    model_.archiving().destinations.refreshFacts();
    background_.finish({QStringLiteral("归档没有完成"), QStringLiteral("danger")});
    stage_ = Confirm;
    candidates_.load();
    Q_EMIT stageChanged();
}

void ArchiveScreen::handleRunEnd(ArchiveRunFlow::RunOutcome outcome) {
    progress_.stop();
    if (!outcome) return handleRunFailure(screens::wholeText(outcome.error()));
    const bool isBehind = background_.isBehind();
    outcome_.set(std::move(*outcome), progress_.total());
    if (outcome_.view().restTitle.isEmpty()) forgetRun();
    background_.finish({outcome_.view().endText, outcome_.view().tone});
    setStage(isBehind ? Closed : Result);
    endConfirmation();
    Q_EMIT archiveFinished();
}

// A list that is kept would keep all of its mail in memory behind the next scan.
void ArchiveScreen::forgetRun() {
    runSelection_ = {};
    if (runCandidates_) model_.context().tasks.discard(std::exchange(runCandidates_, nullptr));
}

QString ArchiveScreen::partialText() const {
    return screens::partialMailText(model_.mail());
}

// The result, or the confirmation with what went wrong.
void ArchiveScreen::showEnd() {
    if (background_.isBehind()) return setStage(Confirm);
    close();
    setStage(Result);
}

void ArchiveScreen::cancelRun() {
    if (stage_ != Running) return;
    progress_.setCancelling();
    model_.archiving().archiveRun.cancelEmailArchive();
}

void ArchiveScreen::retryFailed() {
    if (stage_ != Result) return;
    auto ids = std::make_shared<const SharedTextSet>(outcome_.failedIDs());
    if (!ids->empty()) open(ArchiveRequest::of(std::move(ids)));
}

// What was archived meanwhile is no candidate any more.
void ArchiveScreen::continueRest() {
    if (stage_ != Result) return;
    const auto rest = [candidates = runCandidates_, selection = runSelection_,
                       failed = outcome_.failedIDs()] {
        SharedTextSet ids;
        for (const MailMessageRecord& message : *candidates) {
            if (selection.contains(message.id) && !failed.contains(message.id)) ids.insert(message.id);
        }
        return ids;
    };
    open(ArchiveRequest{rest, {}, true});
}

void ArchiveScreen::goTo(const QString& place) {
    close();
    Q_EMIT placeRequested(place);
}

bool ArchiveScreen::canStart() const {
    const DestinationView destination = destinationView(model_);
    return stage_ == Confirm && !isLoading() && destination.path && destination.facts.connected &&
           candidates_.selectedCount() > 0 && !model_.archiving().archiveRun.isArchiving();
}

ArchiveConfirmation ArchiveScreen::confirmation() const {
    const DestinationView destination = destinationView(model_);
    const std::set<std::int64_t>& years = model_.mail().filters.candidates().archiveFilterYears;
    const DeletionSafety safety = data_.deletionSafety(std::nullopt, years);
    const std::int64_t count = candidates_.selectedCount();
    const std::int64_t bytes = candidates_.selectedBytes();
    ArchiveConfirmation shown;
    shown.isLoading = isLoading();
    shown.canStart = canStart();
    shown.archiveButtonTitle = screens::archiveButtonTitle(destination, count);
    shown.archiveSelectionSummary = screens::archiveSelectionSummary(count, bytes);
    shown.archiveScopeTitle = screens::archiveScopeTitle(isOfChosenMail_ ? candidates_.yearsOfFew() : years);
    shown.archiveEmptyTitle = screens::archiveEmptyTitle(safety);
    shown.archiveEmptyDescription = screens::archiveEmptyDescription(shown.archiveScopeTitle, safety);
    shown.tickedText = screens::archiveTickedText(count, candidates_.count());
    shown.spaceText = screens::archiveSpaceText(bytes, destination.facts.availableBytes);
    shown.isSpaceShort = screens::isSpaceShort(bytes, destination.facts.availableBytes);
    shown.footnote = screens::archiveFootnote(destination);
    shown.sizeTitles = screens::archiveSizeTitles();
    return shown;
}

int ArchiveScreen::minimumSize() const {
    const auto known = std::find(allSizePresets.begin(), allSizePresets.end(),
                                 model_.mail().filters.candidates().transferMinimumSize);
    return static_cast<int>(known - allSizePresets.begin());
}

void ArchiveScreen::setMinimumSize(int preset) {
    if (stage_ != Confirm || preset < 0 || preset >= static_cast<int>(allSizePresets.size())) return;
    model_.mail().filters.setTransferMinimumSize(allSizePresets[static_cast<std::size_t>(preset)]);
    Q_EMIT confirmationChanged();
}

} // namespace corvane
