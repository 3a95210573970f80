// The scan of the Mail store and the restore of the last one. Main thread; one background task a scan, the
// only holder of the growing list.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "model/mail/account_directory.h"
#include "model/mail/index_counts.h"
#include "model/mail/message_catalog.h"
#include "model/mail/model_filters.h"
#include "model/mail/scan/scan_restore.h"
#include "model/tasks/task_slot.h"
#include "records/model_enums.h"

namespace corvane {

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

    // A scan of the selected accounts.
    void scan();
    void cancelScan();

    // Reads the accounts, makes the scan cover everything, and scans.
    void refreshAllMailData();

    // Restores the last result; no effect when there are messages or a scan runs. `loadArchiveIndex` goes on
    // to cachedScanRestored.
    void loadCachedScanIfNeeded(bool loadArchiveIndex);

  Q_SIGNALS:
    void stateChanged();
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
        MailScanSummary summary;
        IndexCounts::Indexed counts;
        std::optional<Date> cacheLoadedAt;
    };

    void setState(MailScanState state);
    void clearDisplay();
    void forgetBeforeScan();
    [[nodiscard]] ScanJob makeScanJob() const;
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
    std::optional<Display> beforeScan_;
    TaskSlot scanTask_;
    TaskSlot restoreTask_;
};

} // namespace corvane
