#include "screens/archived/archived_screen.h"

#include <utility>

#include "records/timestamps.h"
#include "screens/texts/message_trouble.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

ArchivedScreen::ArchivedScreen(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , check_(model)
  , proof_(model.archiving().proof)
  , away_(model.context(), model.mail().catalog)
  , detail_(model.library().mailOpening)
  , guide_(model, desktop)
  , access_(model.mail(), desktop) {
    wire();
}

void ArchivedScreen::wire() {
    const auto updates = [this](auto* sender, auto signal) {
        connect(sender, signal, this, &ArchivedScreen::update);
    };
    updates(&model_.library().overview, &OverviewFlow::overviewChanged);
    updates(&model_.library().presence, &PresenceFlow::presenceChanged);
    updates(&model_.mail().scanFlow, &ScanFlow::stateChanged);
    updates(&model_.mail().catalog, &MessageCatalog::availabilityPublished);
    updates(&model_.library().loader, &LibraryLoader::loadFinished);
    updates(&model_.library().loader, &LibraryLoader::archivedFilesChanged);
    updates(&model_.library().loader, &LibraryLoader::looksEnded);
    updates(&model_.mail().diskAccess, &FullDiskAccess::needsFullDiskAccessChanged);
    updates(&model_.archiving().proof, &ProofFlow::proofEnded);
    connect(&model_.library().loader, &LibraryLoader::archivedEntriesChanged, this,
            &ArchivedScreen::showCachedCheck);
    connect(&away_, &AwayProofCount::changed, this, &ArchivedScreen::changed);
    connect(&model_.archiving().proof, &ProofFlow::progressChanged, this, [this] {
        Q_EMIT proof_.changed();
        guide_.handleProofProgress();
    });
}

void ArchivedScreen::open() {
    if (std::exchange(isOpened_, true)) return;
    model_.library().index.rebuildLibraryIndexIfNeeded();
    model_.library().overview.refreshArchivedOverviewStats();
    showCachedCheck();
    update();
}

// What an earlier check has found of entries that have changed isn't known any more.
void ArchivedScreen::showCachedCheck() {
    if (!isOpened_) return;
    model_.library().presence.refreshArchivedOriginalPresenceIfNeeded(false);
}

void ArchivedScreen::update() {
    if (!isOpened_) return;
    const SharedOverview& overview = model_.library().overview.overview();
    if (overview) {
        const OriginalKnowledge known = knowledge();
        shares_ = screens::archivedShares(*overview);
        accounts_.show(*overview, known, filter_);
        detail_.show(overview, known);
        guide_.show(overview, known);
        const LibraryLoader& library = model_.library().loader;
        away_.count({}, library.archiveLocations(), *library.archivedFiles());
    }
    Q_EMIT changed();
    Q_EMIT check_.changed();
    Q_EMIT proof_.changed();
}

ArchivedScreen::State ArchivedScreen::state() const {
    if (!model_.library().loader.archivedEntries()->empty())
        return model_.library().overview.overview() ? Listed : Loading;
    return model_.library().loader.isLoading() ? Loading : Empty;
}

OriginalKnowledge ArchivedScreen::knowledge() const {
    using enum OriginalKnowledge;
    const SharedOverview& overview = model_.library().overview.overview();
    if (!overview) return loading;
    if (check_.isRunning()) return checking;
    const OriginalPresence& presence = *model_.library().presence.presence();
    if (presence.state() == OriginalPresence::State::unavailable) return unavailable;
    if (presence.state() == OriginalPresence::State::unchecked) return unchecked;
    if (model_.mail().scanFlow.state().isScanning()) return scanning;
    if (overview->inputs.indexHasFailed) return unavailable;
    if (overview->inputs.isReady) return model_.library().overview.isCurrent() ? known : waiting;
    const CatalogState& mail = *model_.mail().catalog.state();
    if (mail.isPartial()) return partial;
    return mail.set->messages->empty() && !model_.mail().scanFlow.isLastScanAwaited() ? noMail : waiting;
}

OverviewHero ArchivedScreen::hero() const {
    const OriginalPresence& presence = *model_.library().presence.presence();
    const SharedOverview& overview = model_.library().overview.overview();
    const bool indexHasFailed = overview && overview->inputs.indexHasFailed;
    const std::string failure = model_.library().presence.questionFailure().value_or(
        indexHasFailed ? std::string(mailIndexFailure) : std::string());
    return screens::overviewHero({.knowledge = knowledge(),
                                  .shares = shares_,
                                  .checkedAt = presence.checkedAt,
                                  .isEarlierCheck = check_.isEarlier(),
                                  .failure = screens::wholeText(failure),
                                  .away = screens::awayProofsSentence(away_.found())});
}

QVariantList ArchivedScreen::holdings() const {
    return screens::holdingParts(shares_, knowledge() == OriginalKnowledge::known);
}

QString ArchivedScreen::totalCount() const {
    return screens::shownMessageCount(shares_.total.count);
}

QString ArchivedScreen::totalSize() const {
    return screens::shownSize(shares_.total.bytes);
}

QString ArchivedScreen::sidebarFigure() const {
    if (state() == Empty) return {};
    if (knowledge() == OriginalKnowledge::unchecked) return QStringLiteral("未检查");
    const bool frees =
        knowledge() == OriginalKnowledge::known && !check_.isEarlier() && shares_.freeable.count > 0;
    return frees ? screens::shownSize(shares_.freeable.bytes) : QStringLiteral("—");
}

void ArchivedScreen::setFilter(int filter) {
    filter_ = static_cast<ArchivedOverviewFilter>(filter);
    update();
}

void ArchivedScreen::openAccount(int row) {
    if (const ArchivedAccount* account = accounts_.record(row)) detail_.open(account->key);
}

void ArchivedScreen::collect() {
    Q_EMIT collectionRequested(detail_.isOpen() ? screens::wholeText(detail_.key()) : QString());
}

void ArchivedScreen::openGuide() {
    if (detail_.isOpen()) guide_.open(detail_.key(), check_.isEarlier());
}

} // namespace corvane
