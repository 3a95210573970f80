// The long jobs over whole archives that a person asks for: to verify one, or to make its lost index anew.
// One is at work at a time, the others wait in their order. What a verification came to is kept over runs of
// the program. Main thread; disks are touched by background jobs
// only. Cancelling changes nothing in an archive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <QObject>

#include "archive/checks/archive_rebuild.h"
#include "archive/checks/archive_verdict.h"
#include "archive/checks/scanned_copies.h"
#include "model/archiving/proof/kept_readings.h"
#include "model/model_context.h"
#include "model/tasks/latest_state_writer.h"
#include "model/tasks/task_slot.h"
#include "records/stores/place_verdict_store.h"

namespace corvane {

class PlaceJobs : public QObject {
    Q_OBJECT

  public:
    enum class Work { verification, rebuild };

    struct Job {
        std::string root;
        Work work = Work::verification;
        std::size_t done = 0;
        std::size_t all = 0; // 0 until it is known
    };

    // How the last job over an archive ended that wasn't cancelled.
    struct End {
        Work work = Work::verification;
        Date at{};
        std::string error{};      // why it came to nothing, for the user; empty when it came to its end
        ArchiveVerdict verdict{}; // of a verification
        std::int64_t adopted = 0; // by a rebuild
        std::vector<ArchiveRebuild::Failure> failures{}; // of a rebuild
    };

    // The last scan and what was read of it; asked on the main thread at the start of a rebuild.
    using ScanProvider = std::function<archive::ScannedMail()>;

    PlaceJobs(ModelContext& context, ScanProvider scanned, QObject* parent = nullptr);

    // Brings back what was kept of earlier runs of the program, once, in the background.
    void load();

    // Queues the job. No effect while one over this archive is at work or waits.
    void start(const std::string& root, Work work);

    // Without effect for an archive that has no job; what was told of it before stays.
    void cancel(std::string_view root);

    // The first is at work.
    [[nodiscard]] const std::vector<Job>& jobs() const { return jobs_; }

    // Null for an archive that has none.
    [[nodiscard]] const Job* job(std::string_view root) const;

    // Null before the first one over this archive.
    [[nodiscard]] const End* end(std::string_view root) const;

  Q_SIGNALS:
    void changed();
    // What a job has read of its archive; before `archiveChanged`.
    void archiveFilesRead(const SharedReadings& readings);
    // An archive isn't as the library knows it: its index is another one, or files are.
    void archiveChanged();

  private:
    struct Input;
    struct Outcome;

    struct Write {
        PlaceVerdictStore store;

        void operator()(const std::vector<KeptVerdict>& verdicts) const { store.save(verdicts); }
    };

    static Outcome run(const Input& input, const ReportingTask<Job>& task);
    void startNext();
    void finish(Outcome outcome);
    void keep();

    ModelContext& context_;
    ScanProvider scanned_;
    std::vector<Job> jobs_;
    std::map<std::string, End, std::less<>> ends_;
    bool isLoadStarted_ = false;
    bool isLoaded_ = false;
    TaskSlot task_;
    TaskSlot loadTask_;
    LatestStateWriter<std::vector<KeptVerdict>, Write> writer_;
};

} // namespace corvane
