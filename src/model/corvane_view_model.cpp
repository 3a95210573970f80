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
  , accounts_(context)
  , destinations_(context)
  , library_(context)
  , accountRules_(context)
  , libraryIndex_(context,
                  [this] {
                      return LibraryIndexInput{library_.archivedEntries(), accounts_.availableAccounts(),
                                               accountRules_.archiveAccountMergeRules(),
                                               library_.archiveLocations()};
                  })
  , readings_(context)
  , setAside_(context)
  , catalog_(context,
             [this] {
                 return AvailabilityInputs{library_.archivedEmailBaseIDs(),
                                           {filters_.minimumCandidateBytes(), filters_.transferMaxYear()},
                                           accounts_.availableAccounts(),
                                           proofInputs(),
                                           setAside_.stableIDs(),
                                           lastFailures_.paths()};
             })
  , visible_(context, catalog_, filters_)
  , counts_(context, accounts_)
  , space_(context, accounts_, catalog_)
  , scanFlow_(context, accounts_, catalog_, counts_, filters_)
  , candidates_(context, catalog_, filters_)
  , ticks_(context, candidates_)
  , archiveRun_(context)
  , proof_(context, readings_,
           [this] {
               return ProofJob{
                   catalog_.messages(), catalog_.state()->availability, proofInputs(), {}, context_.support};
           })
  , rebuild_(context, [this] { return archive::ScannedMail{catalog_.messages(), readings_.facts()}; })
  , placeJobs_(context, [this] { return archive::ScannedMail{catalog_.messages(), readings_.facts()}; })
  , places_(context, library_, [this] { return destinations_.transferDestination(); })
  , previews_(context, catalog_)
  , presence_(context)
  , removal_(context)
  , configBackup_(context)
  , bodyTexts_(context, library_)
  , libraryList_(context, libraryIndex_, bodyTexts_)
  , overview_(context,
              [this] {
                  return overviewInputs({catalog_, libraryIndex_, presence_, counts_, accounts_},
                                        proofInputs());
              })
  , mailOpening_(context)
  , attachments_(context)
  , mailExport_(context)
  , diskAccess_(context)
  , diagnostics_(context, accounts_) {
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
    if (!accounts_.loadCachedAccounts()) accounts_.refreshAccountsFromMail();
    context_.startupLog.mark(fmt::format("viewModel after accounts elapsed={:.3f}s accounts={}",
                                         watch.seconds(), accounts_.availableAccounts().size()));
    library_.loadCachedArchiveLibraryIfNeeded();
    library_.refreshArchiveLocationConnectionStates();
    context_.startupLog.mark(fmt::format("viewModel init finish elapsed={:.3f}s cachedEntries={}",
                                         watch.seconds(), library_.archivedEntries()->size()));
    diskAccess_.refreshFullDiskAccessState();
}

void CorvaneViewModel::wireScan() {
    connect(&scanFlow_, &ScanFlow::scanStarted, this,
            [this] { visible_.setSelectedMessageID(std::nullopt); });
    connect(&scanFlow_, &ScanFlow::scanFinished, this, [this] {
        readings_.prune({library_.archivedEntries(), catalog_.messages()});
        pruneFilterYears();
        counts_.refreshIndexedYearCounts();
    });
    connect(&scanFlow_, &ScanFlow::scanEnded, this,
            [this] { diagnostics_.write(accounts_.selectedAccountPrefixes()); });
    connect(&counts_, &IndexCounts::countsRefreshed, this, [this] {
        isReconciliationDue_ = true;
        reconcileCounts();
    });
    connect(&catalog_, &MessageCatalog::availabilityPublished, this, [this] {
        pruneFilterAccounts();
        reconcileCounts();
    });
    connect(&scanFlow_, &ScanFlow::earlierMessagesRestored, this,
            [this] { visible_.rebuildVisibleMessages(); });
    connect(&scanFlow_, &ScanFlow::homeSnapshotApplied, this,
            [this] { candidates_.setKnownCandidateCount(catalog_.state()->availability->localCount); });
    connect(&scanFlow_, &ScanFlow::cachedScanRestored, this, [this](bool loadIndex) {
        if (loadIndex) loadArchiveIndex(false);
        pruneFilterYears();
        counts_.refreshIndexedYearCounts();
    });
}

// Once for each reading of the index, as soon as the scanned side is known as well.
void CorvaneViewModel::reconcileCounts() {
    if (!isReconciliationDue_ || !catalog_.isAvailabilityKnown()) return;
    // A scan that was brought back knows its candidates before it knows the rest.
    if (catalog_.cachedMailAccountYearStats().empty() && !catalog_.messages()->empty()) return;
    isReconciliationDue_ = false;
    diagnostics_.append(reconciliationLines(
        {counts_.indexedYearCounts(), counts_.indexedYearCountsByAccount()},
        {catalog_.yearStats(), catalog_.cachedMailAccountYearStats(), catalog_.cachedAccountYearStats()}));
}

void CorvaneViewModel::wireAvailability() {
    connect(&catalog_, &MessageCatalog::generationReplaced, this, [this] {
        if (!catalog_.isAvailabilityKnown()) visible_.clear();
        candidates_.markArchiveCandidateCountStale();
    });
    connect(&catalog_, &MessageCatalog::availabilityPublished, this, [this] {
        visible_.rebuildVisibleMessages();
        candidates_.markArchiveCandidateCountStale();
    });
    connect(&visible_, &VisibleMessages::visibleMessagesChanged, this,
            [this] { ticks_.pruneArchiveSelection(); });
    connect(&visible_, &VisibleMessages::visibleMessagesChanged, &catalog_,
            [this] { catalog_.saveCacheIfDue(scanFlow_.cacheLoadedAt()); });
}

void CorvaneViewModel::wireFilters() {
    // Queued, so that several changes of one event make one rebuild.
    connect(
        &filters_, &ModelFilters::listFilterChanged, this, [this] { visible_.rebuildVisibleMessages(); },
        Qt::QueuedConnection);
    connect(&filters_, &ModelFilters::candidateFilterChanged, &candidates_,
            &ArchiveCandidates::markArchiveCandidateCountStale);
}

void CorvaneViewModel::wireArchive() {
    connect(&library_, &LibraryLoader::loadFinished, this, &CorvaneViewModel::lookForRebuild);
    connect(&destinations_, &ArchiveDestinations::destinationPrepared, this,
            &CorvaneViewModel::lookForRebuild);
    connect(&rebuild_, &ArchiveRebuildFlow::rebuilt, this, [this] { loadArchiveIndex(true); });
    connect(&library_, &LibraryLoader::archivedBaseIDsChanged, this, [this] { archivedBaseIDsReplaced(); });
    connect(&destinations_, &ArchiveDestinations::destinationPrepared, this,
            [this] { loadArchiveIndex(false); });
    connect(
        &archiveRun_, &ArchiveRunFlow::archiveRunFinished, this,
        [this](const EmailArchiveRunResult& result, const QString& destination, const QString& signature) {
            loadArchiveIndex(true);
            destinations_.refreshFacts();
            if (result.archivedCount == 0) return;
            bodyTexts_.scheduleBodyTextIndexRepair({platform::canonicalPath(destination.toStdString())},
                                                   result.archivedCount, signature.toStdString());
        });
    connect(&archiveRun_, &ArchiveRunFlow::archiveRunEnded, &ticks_, &ArchiveTicks::pruneArchiveSelection);
    connect(&bodyTexts_, &BodyTexts::libraryReloadWanted, this, [this] { loadArchiveIndex(true); });
}

void CorvaneViewModel::wirePlaces() {
    connect(&placeJobs_, &PlaceJobs::archiveFilesRead, this,
            [this](const SharedReadings& read) { readings_.add(read, KeptReadings::Store::needsThem); });
    connect(&placeJobs_, &PlaceJobs::archiveChanged, this, [this] { loadArchiveIndex(true); });
    // What a run has written before its index is saved would look like files of no record.
    connect(&archiveRun_, &ArchiveRunFlow::archiveRunStarted, this, [this] {
        const auto& destination = destinations_.transferDestination();
        if (destination) placeJobs_.cancel(*destination);
    });
}

// Whatever an outcome follows from has changed: a run of the availability finds the outcomes.
void CorvaneViewModel::wireProof() {
    connect(&library_, &LibraryLoader::loadStarted, &readings_, &KeptReadings::load);
    connect(&library_, &LibraryLoader::loadFinished, this, &CorvaneViewModel::renewFileLooks);
    connect(&library_, &LibraryLoader::archivedFilesChanged, this, [this] {
        if (looks_) renewFileLooks();
    });
    connect(&readings_, &KeptReadings::factsChanged, this, &CorvaneViewModel::proveAnew);
    connect(&setAside_, &SetAside::changed, this, [this] { catalog_.refreshAvailabilityCacheAsync(true); });
    const auto keep = [this](const SharedReadings& read) {
        readings_.add(read, KeptReadings::Store::needsThem);
    };
    connect(&archiveRun_, &ArchiveRunFlow::archiveFilesRead, this, keep);
    connect(&rebuild_, &ArchiveRebuildFlow::archiveFilesRead, this, keep);
    connect(&archiveRun_, &ArchiveRunFlow::archiveRunFinished, &lastFailures_, &LastFailures::setFrom);
    connect(&lastFailures_, &LastFailures::changed, this,
            [this] { catalog_.refreshAvailabilityCacheAsync(true); });
    connect(&proof_, &ProofFlow::proofEnded, this, [this] {
        if (proof_.lastEnd()->sawOtherFiles) loadArchiveIndex(true);
    });
}

ProofInputs CorvaneViewModel::proofInputs() const {
    return {readings_.facts(), library_.archivedEntries(), looks_};
}

void CorvaneViewModel::renewFileLooks() {
    // Equal looks stay the same ones: others cost a pass over all messages.
    if (!looks_ || looks_->files() != library_.archivedFiles())
        looks_ = std::make_shared<const LibraryFileLooks>(library_.archivedFiles());
    proveAnew();
}

void CorvaneViewModel::proveAnew() {
    const bool isDue = !catalog_.messages()->empty() && catalog_.proofs()->inputs != proofInputs();
    if (isDue) catalog_.refreshAvailabilityCacheAsync(true);
}

void CorvaneViewModel::wireLibrary() {
    const auto rebuild = [this] { libraryIndex_.onInputsChanged(); };
    connect(&library_, &LibraryLoader::archivedEntriesChanged, this, rebuild);
    connect(&library_, &LibraryLoader::archiveLocationsChanged, this, rebuild);
    connect(&accounts_, &AccountDirectory::accountsChanged, this, rebuild);
    connect(&accountRules_, &AccountRules::rulesChanged, this, rebuild);
    connect(&accountRules_, &AccountRules::collectionMade, this,
            [this](const QString& key) { libraryList_.showAccount(key.toStdString()); });
    connect(&library_, &LibraryLoader::archivedEntriesChanged, this,
            [this] { presence_.setEntries(library_.archivedEntries()); });
    connect(&removal_, &ArchiveRemovalFlow::removalEnded, this, [this] {
        readings_.forget({{}, removal_.lastEnd()->removedPaths});
        loadArchiveIndex(true);
    });
}

void CorvaneViewModel::wireConfigBackup() {
    const auto write = [this] { configBackup_.writeConfigBackupToArchiveFolders(); };
    connect(&accountRules_, &AccountRules::rulesChanged, this, write);
    connect(&destinations_, &ArchiveDestinations::destinationPrepared, this, write);
}

void CorvaneViewModel::applyConfigBackup(const CorvaneConfigBackup& backup) {
    // It may be the one that waits, which goes.
    const CorvaneConfigBackup applied = backup;
    configBackup_.adoptLocations(applied);
    const auto& destination = applied.destinationPath;
    if (destination && ConfigBackupFlow::isUsablePlace(*destination))
        destinations_.setTransferDestination(*destination, ArchiveDestinations::Folder::left);
    accountRules_.setArchiveAccountMergeRules(
        {applied.accountMergeRules.begin(), applied.accountMergeRules.end()});
    accounts_.setSelectedAccountPrefixes(
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
    if (!wasKnown && library_.location(root) == nullptr) return false;
    markLocationForgotten(settings, root);
    if (destinations_.transferDestination() == root) destinations_.clearTransferDestination();
    placeJobs_.cancel(root);
    library_.dropLocation(root);
    loadArchiveIndex(true);
    return true;
}

// What the overview and the figures of space are made of. A list that grows during a scan changes often, and
// neither says anything of it.
void CorvaneViewModel::wireOverview() {
    const auto refresh = [this] { overview_.onInputsChanged(); };
    connect(&libraryIndex_, &LibraryIndexFlow::indexChanged, this, refresh);
    connect(&presence_, &PresenceFlow::presenceChanged, this, refresh);
    connect(&counts_, &IndexCounts::countsChanged, this, refresh);
    connect(&accounts_, &AccountDirectory::selectionChanged, this, refresh);
    connect(&catalog_, &MessageCatalog::generationReplaced, this, refresh);
    connect(&readings_, &KeptReadings::factsChanged, this, refresh);
    const auto refreshBoth = [this] {
        overview_.onInputsChanged();
        space_.onInputsChanged();
    };
    connect(&catalog_, &MessageCatalog::availabilityPublished, this, refreshBoth);
    connect(&accounts_, &AccountDirectory::accountsChanged, this, refreshBoth);
}

void CorvaneViewModel::wirePreviews() {
    const auto refresh = [this] {
        if (!scanFlow_.state().isScanning()) previews_.refreshPreviewIfNeeded(visible_.selectedMessageID());
    };
    connect(&visible_, &VisibleMessages::selectedMessageChanged, this, refresh);
    connect(&scanFlow_, &ScanFlow::scanFinished, this, refresh);
    connect(&scanFlow_, &ScanFlow::earlierMessagesRestored, this, refresh);
    connect(&scanFlow_, &ScanFlow::cachedScanRestored, this, refresh);
    connect(&scanFlow_, &ScanFlow::stateChanged, this, [this] {
        if (scanFlow_.state().kind == MailScanState::Kind::idle) previews_.cancel();
    });
}

void CorvaneViewModel::archivedBaseIDsReplaced() {
    candidates_.markArchiveCandidateCountStale();
    context_.tasks.postToMain([model = QPointer(this)] {
        if (!model) return;
        model->ticks_.pruneArchiveSelection();
        if (model->filters_.migratedFilter() != MigratedFilter::all) model->visible_.rebuildVisibleMessages();
    });
    // Which messages are archived is a result of this run.
    catalog_.refreshAvailabilityCacheAsync(true);
}

void CorvaneViewModel::wireVolumes() {
    mounts_ =
        context_.platform.subscribeToMounts([model = QPointer(this), &tasks = context_.tasks](auto event) {
            tasks.postToMain([model, event] {
                if (!model) return;
                model->library_.refreshArchiveLocationConnectionStates();
                model->destinations_.refreshFacts();
                if (event == platform::MountEvent::mounted) model->loadArchiveIndex(false);
            });
        });
}

// An archive that the library has read needs none.
void CorvaneViewModel::lookForRebuild() {
    const auto& destination = destinations_.transferDestination();
    const bool isListed = destination && library_.location(*destination) != nullptr;
    rebuild_.look(isListed ? std::nullopt : destination);
}

void CorvaneViewModel::loadArchiveIndex(bool force) {
    library_.loadEmailArchiveIndex(destinations_.transferDestination(), force);
}

// A filter on a year that no longer exists would hide all the mail.
void CorvaneViewModel::pruneFilterYears() {
    areFilterAccountsDue_ = true;
    if (filters_.filterYears().empty() && filters_.archiveFilterYears().empty()) return;
    std::set<std::int64_t> known;
    for (const YearStat& stat : catalog_.yearStats()) known.insert(stat.year);
    const auto cut = [&](const std::set<std::int64_t>& years) {
        std::set<std::int64_t> kept;
        std::set_intersection(years.begin(), years.end(), known.begin(), known.end(),
                              std::inserter(kept, kept.end()));
        return kept;
    };
    filters_.setFilterYears(cut(filters_.filterYears()));
    filters_.setArchiveFilterYears(cut(filters_.archiveFilterYears()));
}

// The same for accounts, once after each scan: which of them have mail is known with its statistics.
void CorvaneViewModel::pruneFilterAccounts() {
    const auto& withMail = catalog_.cachedMailAccountYearStats();
    if (!areFilterAccountsDue_ || (withMail.empty() && !catalog_.messages()->empty())) return;
    areFilterAccountsDue_ = false;
    const std::vector<MailAccount>& known = accounts_.availableAccounts();
    std::set<std::string> kept;
    for (const std::string& key : filters_.filterAccountPrefixes()) {
        const bool isKnown =
            std::ranges::find(withMail, key, &AccountYearStatGroup::accountPrefix) != withMail.end() ||
            std::ranges::find(known, key, &MailAccount::urlPrefix) != known.end();
        if (isKnown) kept.insert(key);
    }
    filters_.setFilterAccountPrefixes(std::move(kept));
}

bool CorvaneViewModel::hasScanDisplayData() const {
    return !catalog_.messages()->empty() || !catalog_.cachedAccountYearStats().empty() ||
           !catalog_.cachedLocalYearStats().empty() || catalog_.summary().scannedMessages > 0;
}

DeletionSafety CorvaneViewModel::deletionSafety(const std::set<std::int64_t>& years) {
    const TallyByAccount tallies =
        tallyMessages({*catalog_.messages(),
                       *catalog_.locallyAvailableIDs(),
                       {*catalog_.archivedMessageIDs(), *catalog_.setAsideIDs(), *catalog_.proofs()},
                       *catalog_.messageYearByID()});
    const IndexedYears indexed{counts_.indexedYearCounts(), counts_.indexedYearCountsByAccount(),
                               accounts_.selectedAccountPrefixes(), &counts_.partialYearCountsByAccount()};
    return corvane::deletionSafety(tallies, std::nullopt, years, indexed);
}

void CorvaneViewModel::applyHomeScope(const std::optional<std::string>& accountPrefix,
                                      const std::set<std::int64_t>& years) {
    filters_.applyHomeScope(accountPrefix, years);
    candidates_.setKnownCandidateCount(candidates_.cachedCandidateCount(accountPrefix, years));
}

void CorvaneViewModel::archiveSelectedEmails(ArchiveRunFlow::Completion completion) {
    archiveRun_.archiveSelectedEmails(candidates_.archiveCandidates(), ticks_.selectedArchiveMessageIDs(),
                                      destinations_.transferDestination(), std::move(completion));
}

} // namespace corvane
