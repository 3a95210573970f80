#include "model/corvane_view_model.h"

#include <algorithm>
#include <iterator>

#include <QPointer>
#include <fmt/format.h>

#include "listing/deletion/count_reconciliation.h"
#include "locations/known_locations.h"
#include "platform/paths.h"
#include "platform/stop_watch.h"

namespace corvane {

CorvaneViewModel::CorvaneViewModel(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , mail_(context, [this] { return availabilityInputs(); })
  , archiving_(context, mail_, [this] { return proofInputs(); })
  , library_(context, mail_, archiving_, [this] { return proofInputs(); }) {
    wireScan();
    wireAvailability();
    wireFilters();
    wireArchive();
    wirePlaces();
    wireProof();
    wireLibrary();
    wireConfigBackup();
    wireOverview();
    wirePreviews();
    startUp();
    wireVolumes();
}

void CorvaneViewModel::startUp() {
    const platform::StopWatch watch;
    context_.startupLog.mark("viewModel init start");
    if (!mail_.accounts.loadCachedAccounts()) mail_.accounts.refreshAccountsFromMail();
    context_.startupLog.mark(fmt::format("viewModel after accounts elapsed={:.3f}s accounts={}",
                                         watch.seconds(), mail_.accounts.availableAccounts().size()));
    library_.loader.loadCachedArchiveLibraryIfNeeded();
    library_.loader.refreshArchiveLocationConnectionStates();
    context_.startupLog.mark(fmt::format("viewModel init finish elapsed={:.3f}s cachedEntries={}",
                                         watch.seconds(), library_.loader.archivedEntries()->size()));
    mail_.diskAccess.refreshFullDiskAccessState();
}

void CorvaneViewModel::wireScan() {
    connect(&mail_.scanFlow, &ScanFlow::scanStarted, this,
            [this] { mail_.visible.setSelectedMessageID(std::nullopt); });
    connect(&mail_.scanFlow, &ScanFlow::scanFinished, this, [this] {
        archiving_.readings.prune({library_.loader.archivedEntries(), mail_.catalog.messages()});
        pruneFilterYears();
        mail_.counts.refreshIndexedYearCounts(mail_.catalog.messages());
    });
    connect(&mail_.scanFlow, &ScanFlow::scanEnded, this,
            [this] { mail_.diagnostics.write(mail_.accounts.selectedAccountPrefixes()); });
    connect(&mail_.counts, &IndexCounts::countsRefreshed, this, [this] {
        isReconciliationDue_ = true;
        reconcileCounts();
    });
    connect(&mail_.catalog, &MessageCatalog::availabilityPublished, this, [this] {
        pruneFilterAccounts();
        reconcileCounts();
    });
    connect(&mail_.scanFlow, &ScanFlow::earlierMessagesRestored, this,
            [this] { mail_.visible.rebuildVisibleMessages(); });
    connect(&mail_.scanFlow, &ScanFlow::homeSnapshotApplied, this, [this] {
        archiving_.candidates.setKnownCandidateCount(mail_.catalog.state()->availability->localCount);
    });
    connect(&mail_.scanFlow, &ScanFlow::cachedScanRestored, this, [this](bool loadIndex) {
        if (loadIndex) loadArchiveIndex(false);
        pruneFilterYears();
        mail_.counts.refreshIndexedYearCounts(mail_.catalog.messages());
    });
}

// Once for each reading of the index, as soon as the scanned side is known as well.
void CorvaneViewModel::reconcileCounts() {
    if (!isReconciliationDue_ || !mail_.catalog.isAvailabilityKnown()) return;
    // A scan that was brought back knows its candidates before it knows the rest.
    if (mail_.catalog.cachedMailAccountYearStats().empty() && !mail_.catalog.messages()->empty()) return;
    isReconciliationDue_ = false;
    mail_.diagnostics.append(
        reconciliationLines({mail_.counts.indexedYearCounts(), mail_.counts.indexedYearCountsByAccount()},
                            {mail_.catalog.yearStats(), mail_.catalog.cachedMailAccountYearStats(),
                             mail_.catalog.cachedAccountYearStats()}));
}

void CorvaneViewModel::wireAvailability() {
    connect(&mail_.catalog, &MessageCatalog::generationReplaced, this, [this] {
        if (!mail_.catalog.isAvailabilityKnown()) mail_.visible.clear();
        archiving_.candidates.markArchiveCandidateCountStale();
    });
    connect(&mail_.catalog, &MessageCatalog::availabilityPublished, this, [this] {
        mail_.visible.rebuildVisibleMessages();
        archiving_.candidates.markArchiveCandidateCountStale();
    });
    connect(&mail_.visible, &VisibleMessages::visibleMessagesChanged, this,
            [this] { archiving_.ticks.pruneArchiveSelection(); });
    connect(&mail_.visible, &VisibleMessages::visibleMessagesChanged, &mail_.catalog,
            [this] { mail_.catalog.saveCacheIfDue(mail_.scanFlow.cacheLoadedAt()); });
}

void CorvaneViewModel::wireFilters() {
    // Queued, so that several changes of one event make one rebuild.
    connect(
        &mail_.filters, &ModelFilters::listFilterChanged, this,
        [this] { mail_.visible.rebuildVisibleMessages(); }, Qt::QueuedConnection);
    connect(&mail_.filters, &ModelFilters::candidateFilterChanged, &archiving_.candidates,
            &ArchiveCandidates::markArchiveCandidateCountStale);
}

void CorvaneViewModel::wireArchive() {
    connect(&library_.loader, &LibraryLoader::loadFinished, this, &CorvaneViewModel::lookForRebuild);
    connect(&archiving_.destinations, &ArchiveDestinations::destinationPrepared, this,
            &CorvaneViewModel::lookForRebuild);
    connect(&archiving_.rebuild, &ArchiveRebuildFlow::rebuilt, this, [this] { loadArchiveIndex(true); });
    connect(&library_.loader, &LibraryLoader::archivedBaseIDsChanged, this,
            [this] { archivedBaseIDsReplaced(); });
    connect(&archiving_.destinations, &ArchiveDestinations::destinationPrepared, this,
            [this] { loadArchiveIndex(false); });
    connect(
        &archiving_.archiveRun, &ArchiveRunFlow::archiveRunFinished, this,
        [this](const EmailArchiveRunResult& result, const QString& destination, const QString& signature) {
            loadArchiveIndex(true);
            archiving_.destinations.refreshFacts();
            if (result.archivedCount == 0) return;
            library_.bodyTexts.scheduleBodyTextIndexRepair(
                {platform::canonicalPath(destination.toStdString())}, result.archivedCount,
                signature.toStdString());
        });
    connect(&archiving_.archiveRun, &ArchiveRunFlow::archiveRunEnded, &archiving_.ticks,
            &ArchiveTicks::pruneArchiveSelection);
    connect(&library_.bodyTexts, &BodyTexts::libraryReloadWanted, this, [this] { loadArchiveIndex(true); });
}

void CorvaneViewModel::wirePlaces() {
    connect(&archiving_.placeJobs, &PlaceJobs::archiveFilesRead, this, [this](const SharedReadings& read) {
        archiving_.readings.add(read, KeptReadings::Store::needsThem);
    });
    connect(&archiving_.placeJobs, &PlaceJobs::archiveChanged, this, [this] { loadArchiveIndex(true); });
    // What a run has written before its index is saved would look like files of no record.
    connect(&archiving_.archiveRun, &ArchiveRunFlow::archiveRunStarted, this, [this] {
        const auto& destination = archiving_.destinations.transferDestination();
        if (destination) archiving_.placeJobs.cancel(*destination);
    });
}

// Whatever an outcome follows from has changed: a run of the availability finds the outcomes.
void CorvaneViewModel::wireProof() {
    connect(&library_.loader, &LibraryLoader::loadStarted, &archiving_.readings, &KeptReadings::load);
    connect(&library_.loader, &LibraryLoader::loadFinished, this, &CorvaneViewModel::renewFileLooks);
    connect(&library_.loader, &LibraryLoader::archivedFilesChanged, this, [this] {
        if (looks_) renewFileLooks();
    });
    connect(&library_.loader, &LibraryLoader::loadWanted, this, [this] { loadArchiveIndex(true); });
    connect(&archiving_.readings, &KeptReadings::factsChanged, this, &CorvaneViewModel::proveAnew);
    connect(&archiving_.setAside, &SetAside::changed, this,
            [this] { mail_.catalog.refreshAvailabilityCacheAsync(true); });
    const auto keep = [this](const SharedReadings& read) {
        archiving_.readings.add(read, KeptReadings::Store::needsThem);
    };
    connect(&archiving_.archiveRun, &ArchiveRunFlow::archiveFilesRead, this, keep);
    connect(&archiving_.rebuild, &ArchiveRebuildFlow::archiveFilesRead, this, keep);
    connect(&archiving_.archiveRun, &ArchiveRunFlow::archiveRunFinished, &archiving_.lastFailures,
            &LastFailures::setFrom);
    connect(&archiving_.lastFailures, &LastFailures::changed, this,
            [this] { mail_.catalog.refreshAvailabilityCacheAsync(true); });
    connect(&archiving_.proof, &ProofFlow::proofEnded, this, [this] {
        if (archiving_.proof.lastEnd()->sawOtherFiles) loadArchiveIndex(true);
    });
}

AvailabilityInputs CorvaneViewModel::availabilityInputs() const {
    const CandidateFilters& limits = mail_.filters.candidates();
    return {library_.loader.archivedEmailBaseIDs(), {limits.minimumCandidateBytes, limits.transferMaxYear},
            mail_.accounts.availableAccounts(),     proofInputs(),
            archiving_.setAside.stableIDs(),        archiving_.lastFailures.paths()};
}

ProofInputs CorvaneViewModel::proofInputs() const {
    return {archiving_.readings.facts(), library_.loader.archivedEntries(), looks_};
}

void CorvaneViewModel::renewFileLooks() {
    // Equal looks stay the same ones: others cost a pass over all messages.
    if (!looks_ || looks_->files() != library_.loader.archivedFiles()) {
        looks_ = std::make_shared<const LibraryFileLooks>(library_.loader.archivedFiles());
        library_.overview.onInputsChanged(); // what it says of originals rests on the earlier ones
    }
    archiving_.readings.compareWith({library_.loader.archivedEntries(), library_.loader.archivedFiles(),
                                     library_.loader.goneWithoutIndex()});
    proveAnew();
}

void CorvaneViewModel::proveAnew() {
    const bool isDue =
        !mail_.catalog.messages()->empty() && mail_.catalog.availability().proofs->inputs != proofInputs();
    if (isDue) mail_.catalog.refreshAvailabilityCacheAsync(true);
}

void CorvaneViewModel::wireLibrary() {
    const auto rebuild = [this] { library_.index.onInputsChanged(); };
    connect(&library_.loader, &LibraryLoader::archivedEntriesChanged, this, rebuild);
    connect(&library_.loader, &LibraryLoader::archiveLocationsChanged, this, rebuild);
    connect(&mail_.accounts, &AccountDirectory::accountsChanged, this, rebuild);
    connect(&library_.accountRules, &AccountRules::rulesChanged, this, rebuild);
    connect(&library_.accountRules, &AccountRules::collectionMade, this,
            [this](const QString& key) { library_.list.showAccount(key.toStdString()); });
    connect(&library_.loader, &LibraryLoader::archivedEntriesChanged, this,
            [this] { library_.presence.setEntries(library_.loader.archivedEntries()); });
    connect(&library_.removal, &ArchiveRemovalFlow::removalEnded, this, [this] {
        archiving_.readings.forget({{}, library_.removal.lastEnd()->removedPaths});
        loadArchiveIndex(true);
    });
}

void CorvaneViewModel::wireConfigBackup() {
    const auto write = [this] { library_.configBackup.writeConfigBackupToArchiveFolders(); };
    connect(&library_.accountRules, &AccountRules::rulesChanged, this, write);
    connect(&archiving_.destinations, &ArchiveDestinations::destinationPrepared, this, write);
}

void CorvaneViewModel::applyConfigBackup(const CorvaneConfigBackup& backup) {
    // It may be the one that waits, which goes.
    const CorvaneConfigBackup applied = backup;
    library_.configBackup.adoptLocations(applied);
    const auto& destination = applied.destinationPath;
    if (destination && ConfigBackupFlow::isUsablePlace(*destination))
        archiving_.destinations.setTransferDestination(*destination, ArchiveDestinations::Folder::left);
    library_.accountRules.setArchiveAccountMergeRules(
        {applied.accountMergeRules.begin(), applied.accountMergeRules.end()});
    mail_.accounts.setSelectedAccountPrefixes(
        {applied.selectedAccountPrefixes.begin(), applied.selectedAccountPrefixes.end()});
    loadArchiveIndex(true);
}

void CorvaneViewModel::addLocation(const std::string& path) {
    const std::string root = platform::canonicalPath(path);
    rememberLocation(context_.settings, root);
    unforgetLocation(context_.settings, root);
    loadArchiveIndex(true);
}

bool CorvaneViewModel::forgetLocation(const std::string& rootPath) {
    const std::string root = platform::canonicalPath(rootPath);
    platform::SettingsStore& settings = context_.settings;
    const bool wasKnown = removeKnownLocation(settings, root);
    if (!wasKnown && library_.loader.location(root) == nullptr) return false;
    markLocationForgotten(settings, root);
    if (archiving_.destinations.transferDestination() == root)
        archiving_.destinations.clearTransferDestination();
    archiving_.placeJobs.cancel(root);
    library_.loader.dropLocation(root);
    loadArchiveIndex(true);
    return true;
}

// What the overview and the figures of space are made of. A list that grows during a scan changes often, and
// neither says anything of it.
void CorvaneViewModel::wireOverview() {
    const auto refresh = [this] { library_.overview.onInputsChanged(); };
    connect(&library_.index, &LibraryIndexFlow::indexChanged, this, refresh);
    connect(&library_.presence, &PresenceFlow::presenceChanged, this, refresh);
    // Who asks Mail again asks for all of it.
    connect(&library_.presence, &PresenceFlow::presenceChanged, this, [this] {
        if (library_.presence.archivedOriginalPresenceChecking())
            mail_.counts.refreshIfOld(mail_.catalog.messages());
    });
    connect(&mail_.counts, &IndexCounts::countsChanged, this, refresh);
    connect(&mail_.accounts, &AccountDirectory::selectionChanged, this, refresh);
    connect(&mail_.catalog, &MessageCatalog::generationReplaced, this, refresh);
    connect(&archiving_.readings, &KeptReadings::factsChanged, this, refresh);
    const auto refreshBoth = [this] {
        library_.overview.onInputsChanged();
        mail_.space.onInputsChanged();
    };
    connect(&mail_.catalog, &MessageCatalog::availabilityPublished, this, refreshBoth);
    connect(&mail_.accounts, &AccountDirectory::accountsChanged, this, refreshBoth);
}

void CorvaneViewModel::wirePreviews() {
    const auto refresh = [this] {
        if (!mail_.scanFlow.state().isScanning())
            mail_.previews.refreshPreviewIfNeeded(mail_.visible.selectedMessageID());
    };
    connect(&mail_.visible, &VisibleMessages::selectedMessageChanged, this, refresh);
    connect(&mail_.scanFlow, &ScanFlow::scanFinished, this, refresh);
    connect(&mail_.scanFlow, &ScanFlow::earlierMessagesRestored, this, refresh);
    connect(&mail_.scanFlow, &ScanFlow::cachedScanRestored, this, refresh);
    connect(&mail_.scanFlow, &ScanFlow::stateChanged, this, [this] {
        if (mail_.scanFlow.state().kind == MailScanState::Kind::idle) mail_.previews.cancel();
    });
}

void CorvaneViewModel::archivedBaseIDsReplaced() {
    archiving_.candidates.markArchiveCandidateCountStale();
    context_.tasks.postToMain([model = QPointer(this)] {
        if (!model) return;
        model->archiving_.ticks.pruneArchiveSelection();
        if (model->mail_.filters.list().migratedFilter != MigratedFilter::all)
            model->mail_.visible.rebuildVisibleMessages();
    });
    // Which messages are archived is a result of this run.
    mail_.catalog.refreshAvailabilityCacheAsync(true);
}

void CorvaneViewModel::wireVolumes() {
    mounts_ =
        context_.platform.subscribeToMounts([model = QPointer(this), &tasks = context_.tasks](auto event) {
            tasks.postToMain([model, event] {
                if (!model) return;
                model->library_.loader.refreshArchiveLocationConnectionStates();
                model->archiving_.destinations.refreshFacts();
                if (event == platform::MountEvent::mounted) model->loadArchiveIndex(false);
            });
        });
}

// An archive that the library has read needs none.
void CorvaneViewModel::lookForRebuild() {
    const auto& destination = archiving_.destinations.transferDestination();
    const bool isListed = destination && library_.loader.location(*destination) != nullptr;
    archiving_.rebuild.look(isListed ? std::nullopt : destination);
}

void CorvaneViewModel::loadArchiveIndex(bool force) {
    library_.loader.loadEmailArchiveIndex(archiving_.destinations.transferDestination(), force);
}

void CorvaneViewModel::lookAtArchives() {
    library_.loader.refreshArchiveLocationConnectionStates();
    // Of an archive that the library doesn't list no look tells that it can be read again.
    if (!library_.loader.unreadableRoots().empty()) loadArchiveIndex(false);
    archiving_.destinations.refreshFacts();
    archiving_.readings.load();
}

// A filter on a year that no longer exists would hide all the mail.
void CorvaneViewModel::pruneFilterYears() {
    areFilterAccountsDue_ = true;
    if (mail_.filters.list().filterYears.empty() && mail_.filters.candidates().archiveFilterYears.empty())
        return;
    std::set<std::int64_t> known;
    for (const YearStat& stat : mail_.catalog.yearStats()) known.insert(stat.year);
    const auto cut = [&](const std::set<std::int64_t>& years) {
        std::set<std::int64_t> kept;
        std::set_intersection(years.begin(), years.end(), known.begin(), known.end(),
                              std::inserter(kept, kept.end()));
        return kept;
    };
    mail_.filters.set(&ListFilters::filterYears, cut(mail_.filters.list().filterYears));
    mail_.filters.set(&CandidateFilters::archiveFilterYears,
                      cut(mail_.filters.candidates().archiveFilterYears));
}

// The same for accounts, once after each scan: which of them have mail is known with its statistics.
void CorvaneViewModel::pruneFilterAccounts() {
    const auto& withMail = mail_.catalog.cachedMailAccountYearStats();
    if (!areFilterAccountsDue_ || (withMail.empty() && !mail_.catalog.messages()->empty())) return;
    areFilterAccountsDue_ = false;
    const std::vector<MailAccount>& known = mail_.accounts.availableAccounts();
    std::set<std::string> kept;
    for (const std::string& key : mail_.filters.filterAccountPrefixes()) {
        const bool isKnown =
            std::ranges::find(withMail, key, &AccountYearStatGroup::accountPrefix) != withMail.end() ||
            std::ranges::find(known, key, &MailAccount::urlPrefix) != known.end();
        if (isKnown) kept.insert(key);
    }
    mail_.filters.setFilterAccountPrefixes(std::move(kept));
}

bool CorvaneViewModel::hasScanDisplayData() const {
    return !mail_.catalog.messages()->empty() || !mail_.catalog.cachedAccountYearStats().empty() ||
           !mail_.catalog.cachedLocalYearStats().empty() || mail_.catalog.summary().scannedMessages > 0;
}

DeletionSafety CorvaneViewModel::deletionSafety(const std::set<std::int64_t>& years) {
    const TallyByAccount tallies =
        tallyMessages({*mail_.catalog.messages(),
                       *mail_.catalog.locallyAvailableIDs(),
                       {*mail_.catalog.archivedMessageIDs(), *mail_.catalog.availability().setAsideIDs,
                        *mail_.catalog.availability().proofs},
                       *mail_.catalog.messageYearByID()});
    const IndexedYears indexed{mail_.counts.indexedYearCounts(), mail_.counts.indexedYearCountsByAccount(),
                               mail_.accounts.selectedAccountPrefixes(),
                               &mail_.counts.partialYearCountsByAccount()};
    return corvane::deletionSafety(tallies, std::nullopt, years, indexed);
}

void CorvaneViewModel::applyHomeScope(const std::optional<std::string>& accountPrefix,
                                      const std::set<std::int64_t>& years) {
    mail_.filters.applyHomeScope(accountPrefix, years);
    archiving_.candidates.setKnownCandidateCount(
        archiving_.candidates.cachedCandidateCount(accountPrefix, years));
}

void CorvaneViewModel::archiveSelectedEmails(ArchiveRunFlow::Completion completion) {
    archiving_.archiveRun.archiveSelectedEmails(
        archiving_.candidates.archiveCandidates(), archiving_.ticks.selectedArchiveMessageIDs(),
        archiving_.destinations.transferDestination(), std::move(completion));
}

} // namespace corvane
