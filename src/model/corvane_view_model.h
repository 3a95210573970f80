// The one long-lived object of the program: the state that more than one screen sees, and all long work. Main
// thread only, without locks.
//
// It owns one component a flow, those of one subject together, and wires the reactions that join them;
// whoever looks for "what happens when the scan ends" finds it in corvane_view_model.cpp. Screens and the
// command line use the components' operations and signals directly.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include <QObject>

#include "model/components/archiving_components.h"
#include "model/components/library_components.h"
#include "model/components/mail_components.h"
#include "model/library/library_file_looks.h"
#include "model/model_context.h"

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

    // Looks at the archives anew, as somebody may have changed them: which are connected, which of their
    // files are there, what other programs have read of them. What follows is published as it is found.
    void lookAtArchives();

    // Takes over what a backup holds: its places are added to the known ones, the rest replaces what was.
    void applyConfigBackup(const CorvaneConfigBackup& backup);

    [[nodiscard]] ModelContext& context() const { return context_; }

    [[nodiscard]] MailComponents& mail() { return mail_; }

    [[nodiscard]] ArchivingComponents& archiving() { return archiving_; }

    [[nodiscard]] LibraryComponents& library() { return library_; }

  private:
    [[nodiscard]] AvailabilityInputs availabilityInputs() const;
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
    MailComponents mail_;
    ArchivingComponents archiving_;
    LibraryComponents library_;
    std::shared_ptr<const LibraryFileLooks> looks_; // null before the first live load
    bool isReconciliationDue_ = false;
    bool areFilterAccountsDue_ = false;
    std::unique_ptr<platform::MountSubscription> mounts_;
};

} // namespace corvane
