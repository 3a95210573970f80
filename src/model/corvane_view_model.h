// The one long-lived object of the program: the state that more than one screen sees, and all long work. Main
// thread only, without locks.
//
// It owns one component a flow and wires the reactions that join them; whoever looks for "what happens when
// the scan ends" finds it in corvane_view_model.cpp. Screens and the command line use the components'
// operations and signals directly.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include <QObject>

#include "model/archiving/archive_candidates.h"
#include "model/archiving/archive_rebuild_flow.h"
#include "model/archiving/archive_run_flow.h"
#include "model/archiving/archive_ticks.h"
#include "model/archiving/destinations.h"
#include "model/archiving/kept_readings.h"
#include "model/archiving/last_failures.h"
#include "model/archiving/place_jobs.h"
#include "model/archiving/proof_flow.h"
#include "model/archiving/set_aside.h"
#include "model/library/account_rules.h"
#include "model/library/archive_places.h"
#include "model/library/archive_removal_flow.h"
#include "model/library/body_texts.h"
#include "model/library/config_backup_flow.h"
#include "model/library/library_file_looks.h"
#include "model/library/library_index_flow.h"
#include "model/library/library_list_flow.h"
#include "model/library/library_loader.h"
#include "model/library/mail_export_flow.h"
#include "model/library/opening/archived_mail_opening.h"
#include "model/library/opening/attachment_flow.h"
#include "model/library/overview/overview_flow.h"
#include "model/library/overview/overview_inputs.h"
#include "model/library/presence/presence_flow.h"
#include "model/mail/account_directory.h"
#include "model/mail/index_counts.h"
#include "model/mail/mail_access.h"
#include "model/mail/mail_diagnostics.h"
#include "model/mail/message_catalog.h"
#include "model/mail/model_filters.h"
#include "model/mail/preview_refresh.h"
#include "model/mail/scan/scan_flow.h"
#include "model/mail/space_usage_flow.h"
#include "model/mail/visible_messages.h"

namespace corvane {

class CorvaneViewModel : public QObject {
    Q_OBJECT

  public:
    // Reads the settings and the small caches: accounts and the library snapshot. `context` must outlive the
    // model.
    explicit CorvaneViewModel(ModelContext& context, QObject* parent = nullptr);

    // There is something to show: messages, or the statistics of a snapshot.
    [[nodiscard]] bool hasScanDisplayData() const;

    // Numbers of local, archived and server-only messages of the selected accounts; of all years when `years`
    // is empty. All are 0 as long as it isn't known what is on this machine. A pass over all messages.
    [[nodiscard]] DeletionSafety deletionSafety(const std::set<std::int64_t>& years);

    // Narrows everything to one account (or none in particular) and some years.
    void applyHomeScope(const std::optional<std::string>& accountPrefix, const std::set<std::int64_t>& years);

    // Archives the ticked candidates to the chosen destination; see ArchiveRunFlow.
    void archiveSelectedEmails(ArchiveRunFlow::Completion completion);

    // Takes an archive out of the library and out of what is chosen or known; what lies in it stays. It comes
    // back once it was away, or when it is chosen again. False, without effect, for a root that nobody knows.
    bool forgetLocation(const std::string& rootPath);

    // Adds a place to those that are known, and reads what archive there is. It isn't forgotten any more.
    void addLocation(const std::string& path);

    // Takes over what a backup holds: its places are added to the known ones, the rest replaces what was.
    void applyConfigBackup(const CorvaneConfigBackup& backup);

    [[nodiscard]] ModelContext& context() const { return context_; }

    [[nodiscard]] ModelFilters& filters() { return filters_; }

    [[nodiscard]] AccountDirectory& accounts() { return accounts_; }

    [[nodiscard]] LibraryLoader& library() { return library_; }

    [[nodiscard]] AccountRules& accountRules() { return accountRules_; }

    [[nodiscard]] LibraryIndexFlow& libraryIndex() { return libraryIndex_; }

    [[nodiscard]] MessageCatalog& catalog() { return catalog_; }

    [[nodiscard]] VisibleMessages& visible() { return visible_; }

    [[nodiscard]] IndexCounts& counts() { return counts_; }

    [[nodiscard]] SpaceUsageFlow& space() { return space_; }

    [[nodiscard]] ScanFlow& scanFlow() { return scanFlow_; }

    [[nodiscard]] ArchiveDestinations& destinations() { return destinations_; }

    [[nodiscard]] ArchiveCandidates& candidates() { return candidates_; }

    [[nodiscard]] ArchiveTicks& ticks() { return ticks_; }

    [[nodiscard]] ArchiveRunFlow& archiveRun() { return archiveRun_; }

    [[nodiscard]] ProofFlow& proof() { return proof_; }

    [[nodiscard]] LastFailures& lastFailures() { return lastFailures_; }

    [[nodiscard]] SetAside& setAside() { return setAside_; }

    [[nodiscard]] ArchiveRebuildFlow& rebuild() { return rebuild_; }

    [[nodiscard]] PlaceJobs& placeJobs() { return placeJobs_; }

    [[nodiscard]] ArchivePlaces& places() { return places_; }

    [[nodiscard]] PreviewRefresh& previews() { return previews_; }

    [[nodiscard]] PresenceFlow& presence() { return presence_; }

    [[nodiscard]] ConfigBackupFlow& configBackup() { return configBackup_; }

    [[nodiscard]] ArchiveRemovalFlow& removal() { return removal_; }

    [[nodiscard]] BodyTexts& bodyTexts() { return bodyTexts_; }

    [[nodiscard]] LibraryListFlow& libraryList() { return libraryList_; }

    [[nodiscard]] OverviewFlow& overview() { return overview_; }

    [[nodiscard]] ArchivedMailOpening& mailOpening() { return mailOpening_; }

    [[nodiscard]] AttachmentFlow& attachments() { return attachments_; }

    [[nodiscard]] MailExportFlow& mailExport() { return mailExport_; }

    [[nodiscard]] FullDiskAccess& diskAccess() { return diskAccess_; }

    [[nodiscard]] MailDiagnostics& diagnostics() { return diagnostics_; }

  private:
    void startUp();
    void wireScan();
    void reconcileCounts();
    void wireAvailability();
    void wireFilters();
    void wireArchive();
    void wirePlaces();
    void wireProof();
    void wireLibrary();
    void wireConfigBackup();
    void wirePreviews();
    void wireVolumes();
    void archivedBaseIDsReplaced();
    [[nodiscard]] ProofInputs proofInputs() const;
    void wireOverview();
    void renewFileLooks();
    void proveAnew();
    void pruneFilterYears();
    void pruneFilterAccounts();
    void loadArchiveIndex(bool force);
    void lookForRebuild();

    ModelContext& context_;
    ModelFilters filters_;
    AccountDirectory accounts_;
    ArchiveDestinations destinations_;
    LibraryLoader library_;
    AccountRules accountRules_;
    LibraryIndexFlow libraryIndex_;
    KeptReadings readings_;
    SetAside setAside_;
    LastFailures lastFailures_;
    std::shared_ptr<const LibraryFileLooks> looks_; // null before the first live load
    MessageCatalog catalog_;
    VisibleMessages visible_;
    IndexCounts counts_;
    SpaceUsageFlow space_;
    ScanFlow scanFlow_;
    ArchiveCandidates candidates_;
    ArchiveTicks ticks_;
    ArchiveRunFlow archiveRun_;
    ProofFlow proof_;
    ArchiveRebuildFlow rebuild_;
    PlaceJobs placeJobs_;
    ArchivePlaces places_;
    PreviewRefresh previews_;
    PresenceFlow presence_;
    ArchiveRemovalFlow removal_;
    ConfigBackupFlow configBackup_;
    BodyTexts bodyTexts_;
    LibraryListFlow libraryList_;
    OverviewFlow overview_;
    ArchivedMailOpening mailOpening_;
    AttachmentFlow attachments_;
    MailExportFlow mailExport_;
    FullDiskAccess diskAccess_;
    MailDiagnostics diagnostics_;
    bool isReconciliationDue_ = false;
    bool areFilterAccountsDue_ = false;
    std::unique_ptr<platform::MountSubscription> mounts_;
};

} // namespace corvane
