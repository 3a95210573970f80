// The scan of the Mail store and the restore of the last one. Main thread; one background task a scan, the
// only holder of the growing list.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "model/mail/account_directory.h"
#include "model/mail/index_counts.h"
#include "model/mail/messages/message_catalog.h"
#include "model/mail/messages/model_filters.h"
#include "model/mail/scan/scan_restore.h"
#include "model/tasks/task_slot.h"
#include "records/model_enums.h"

namespace corvane {

namespace mailstore {
struct AccountScope;
class ScopeToCome;
} // namespace mailstore

struct FinishedScan;
struct ScanJob;
struct ScanStep;

class ScanFlow : public QObject {
    Q_OBJECT

  public:
    ScanFlow(ModelContext& context, AccountDirectory& accounts, MessageCatalog& catalog, IndexCounts& counts,
             ModelFilters& filters, QObject* parent = nullptr);

    [[nodiscard]] const MailScanState& state() const { return state_; }

    [[nodiscard]] const std::string& scanTimingLog() const { return scanTimingLog_; }

    // When the data shown was scanned.
    [[nodiscard]] const std::optional<Date>& cacheLoadedAt() const { return cacheLoadedAt_; }

    // The last failure's message is advice on the year range, not an error.
    [[nodiscard]] bool scanFailureIsYearRangeInfo() const { return failureIsYearRangeInfo_; }

    // The result of the last whole scan hasn't been looked for yet: nothing is known, and not that there is
    // nothing.
    [[nodiscard]] bool isLastScanAwaited() const { return !hasLookedForLastScan_; }

    // That result is being read.
    [[nodiscard]] bool isRestoring() const { return restoreTask_.isRunning(); }

    // When the whole scan was made that can be brought back in place of a partial list; absent where the list
    // isn't partial, and where there is none.
    [[nodiscard]] std::optional<Date> restorableScanTime() const;

    // A scan of the selected accounts. Its end is `finished` or `failed`; what it has listed is partial until
    // it has finished.
    void scan();

    // Ends the scan, or the whole refresh where the accounts are still being read. What was listed stays, as
    // a part of the mail.
    void cancelScan();

    // Reads the accounts, makes the scan cover everything, and scans. Without accounts it ends as `failed`,
    // and what is shown stays.
    void refreshAllMailData();

    // Restores the last whole result; no effect while a scan runs, and where there are messages that aren't
    // partial. `loadArchiveIndex` goes on to cachedScanRestored. A result that can't be read ends as
    // `failed`.
    void loadCachedScanIfNeeded(bool loadArchiveIndex);

  Q_SIGNALS:
    void stateChanged();
    // What is known of the last whole result, or whether it is being read.
    void restorableChanged();
    void timingChanged();
    // The display was cleared for a new scan.
    void scanStarted();
    // A scan or a restore has published its messages.
    void scanFinished();
    // A scan has come to its end, whatever it found; one that was cancelled hasn't.
    void scanEnded();
    // The messages of before a failed scan are back.
    void earlierMessagesRestored();
    void homeSnapshotApplied();
    void cachedScanRestored(bool loadArchiveIndex);

  private:
    struct Display {
        SharedMessageSet messages;
        bool isPartial = false;
        MailScanSummary summary;
        IndexCounts::Indexed counts;
        std::optional<Date> cacheLoadedAt;
    };

    void setState(MailScanState state);
    void clearDisplay();
    void forgetBeforeScan();
    void lookForWholeScan();
    void restoreEnded(RestoreOutcome outcome, bool loadArchiveIndex);
    [[nodiscard]] mailstore::AccountScope selectedScope() const;
    [[nodiscard]] ScanJob makeScanJob() const;
    void start(ScanJob job);
    void onFullRefreshAccounts();
    void onStep(ScanStep step);
    void onScanFinished(FinishedScan finished);
    void onScanBroken(const std::string& message);
    void fail(const std::string& message, bool isYearRangeInfo = false);
    [[nodiscard]] bool mayRestore() const;
    void applySnapshot(const MailHomeSnapshot& snapshot);
    void applyRestored(RestoredScan restored, bool loadArchiveIndex);

    ModelContext& context_;
    AccountDirectory& accounts_;
    MessageCatalog& catalog_;
    IndexCounts& counts_;
    ModelFilters& filters_;
    MailScanState state_;
    std::string scanTimingLog_;
    std::optional<Date> cacheLoadedAt_;
    bool failureIsYearRangeInfo_ = false;
    bool hasLookedForLastScan_ = false;
    bool isRestoreDropped_ = false;     // it came while the state said that a scan runs
    std::optional<Date> wholeScanTime_; // of the cached one, as it was when a scan came to no end
    std::optional<Display> beforeScan_;
    TaskSlot scanTask_;
    // Of a refresh whose scan is at work beside the reading of the accounts; null otherwise.
    std::shared_ptr<mailstore::ScopeToCome> scopeToCome_;
    TaskSlot restoreTask_;
    TaskSlot lookTask_;
};

} // namespace corvane
