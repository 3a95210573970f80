#include "model/archiving/place_jobs.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "model/tasks/progress_pace.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

// Of more a new verification tells.
constexpr std::size_t mostFindingsKept = 1000;

// By ArchiveVerdict::Fault; what the file says.
constexpr std::array<std::string_view, 7> faultNames = {
    "missing", "altered", "otherSize", "otherMail", "unreadable", "repeatedPath", "unrecorded"};

PlaceJobs::End endOf(const KeptVerdict& kept) {
    PlaceJobs::End end{.at = kept.at};
    end.verdict = {kept.checked, kept.intact, kept.withoutHash, {}};
    for (const KeptVerdict::Finding& finding : kept.findings) {
        const auto name = std::ranges::find(faultNames, finding.fault);
        if (name == faultNames.end()) continue;
        end.verdict.findings.push_back(
            {finding.path, static_cast<ArchiveVerdict::Fault>(name - faultNames.begin())});
    }
    return end;
}

KeptVerdict keptOf(const std::string& root, const PlaceJobs::End& end) {
    const ArchiveVerdict& verdict = end.verdict;
    KeptVerdict kept{root, end.at, verdict.checked, verdict.intact, verdict.withoutHash, {}};
    for (const ArchiveVerdict::Finding& finding : verdict.findings) {
        if (kept.findings.size() == mostFindingsKept) break;
        kept.findings.push_back(
            {finding.path, std::string(faultNames.at(static_cast<std::size_t>(finding.fault)))});
    }
    return kept;
}

} // namespace

struct PlaceJobs::Input {
    const platform::Platform& platform;
    platform::FileLayer& files;
    Job job;
    archive::ScannedMail scanned;
};

struct PlaceJobs::Outcome {
    End end;
    std::vector<ArchivedFileReading> readings{};
    bool wasCancelled = false;
};

PlaceJobs::PlaceJobs(ModelContext& context, ScanProvider scanned, QObject* parent)
  : QObject(parent)
  , context_(context)
  , scanned_(std::move(scanned))
  , task_(context.tasks)
  , loadTask_(context.tasks)
  , writer_(context.tasks, {PlaceVerdictStore(context.support)}) {}

void PlaceJobs::load() {
    if (std::exchange(isLoadStarted_, true)) return;
    loadTask_.start(
        TaskPriority::userInitiated, PlaceVerdictStore(context_.support),
        [](const PlaceVerdictStore& store, const TaskHandle&) { return store.load(); },
        [this](const std::vector<KeptVerdict>& kept) {
            // What this run of the program has found is newer.
            for (const KeptVerdict& verdict : kept) ends_.try_emplace(verdict.root, endOf(verdict));
            isLoaded_ = true;
            Q_EMIT changed();
        });
}

void PlaceJobs::keep() {
    // Without the earlier ones they would be lost.
    if (!isLoaded_) return;
    std::vector<KeptVerdict> kept;
    for (const auto& [root, end] : ends_) {
        if (end.work == Work::verification && end.error.empty()) kept.push_back(keptOf(root, end));
    }
    writer_.save(std::move(kept));
}

const PlaceJobs::Job* PlaceJobs::job(std::string_view root) const {
    const auto found = std::ranges::find(jobs_, root, &Job::root);
    return found == jobs_.end() ? nullptr : &*found;
}

const PlaceJobs::End* PlaceJobs::end(std::string_view root) const {
    const auto found = ends_.find(root);
    return found == ends_.end() ? nullptr : &found->second;
}

void PlaceJobs::start(const std::string& root, Work work) {
    if (job(root) != nullptr) return;
    jobs_.push_back({.root = root, .work = work});
    if (jobs_.size() == 1) startNext();
    Q_EMIT changed();
}

void PlaceJobs::cancel(std::string_view root) {
    const auto found = std::ranges::find(jobs_, root, &Job::root);
    if (found == jobs_.end()) return;
    // The one at work goes when it has ended.
    if (found == jobs_.begin()) return task_.requestStop();
    jobs_.erase(found);
    Q_EMIT changed();
}

void PlaceJobs::startNext() {
    if (jobs_.empty()) return;
    const Job& next = jobs_.front();
    task_.startReporting<Job>(
        TaskPriority::userInitiated,
        Input{context_.platform, context_.support.files(), next,
              next.work == Work::rebuild ? scanned_() : archive::ScannedMail()},
        &PlaceJobs::run,
        [this](Job progress) {
            jobs_.front() = std::move(progress);
            Q_EMIT changed();
        },
        [this](Outcome outcome) { finish(std::move(outcome)); });
}

PlaceJobs::Outcome PlaceJobs::run(const Input& input, const ReportingTask<Job>& task) {
    Outcome outcome{{.work = input.job.work, .at = currentTimestamp()}};
    ProgressPace pace;
    const auto report = [&](std::size_t done, std::size_t all) {
        if (pace.isDue(done, all)) task.report({input.job.root, input.job.work, done, all});
    };
    try {
        if (input.job.work == Work::verification) {
            const auto keep = [&](std::vector<ArchivedFileReading> readings) {
                outcome.readings = std::move(readings);
            };
            const ArchiveVerification found =
                verifyArchive(input.job.root, report, task.stopToken(), input.files, std::nullopt, keep);
            outcome.wasCancelled = found.wasCancelled;
            outcome.end.verdict = verdictOf(found);
            return outcome;
        }
        RebuildOptions options;
        options.scanned = input.scanned;
        options.progress = report;
        options.markHidden = [&input](const std::string& path) { input.platform.markHidden(path); };
        ArchiveRebuild rebuilt = rebuildArchive(input.job.root, options, task.stopToken(), input.files);
        outcome.wasCancelled = rebuilt.wasCancelled;
        outcome.end.adopted = rebuilt.adopted;
        outcome.end.failures = std::move(rebuilt.failures);
        outcome.readings = std::move(rebuilt.readings);
    } catch (const std::exception& error) {
        outcome.wasCancelled = task.isCancelled();
        outcome.end.error = error.what();
    }
    return outcome;
}

void PlaceJobs::finish(Outcome outcome) {
    const std::string root = jobs_.front().root;
    jobs_.erase(jobs_.begin());
    const End& end = outcome.end;
    const bool isRead = !outcome.wasCancelled && end.error.empty();
    const bool hasChanged = isRead && (end.work == Work::rebuild || !end.verdict.findings.empty());
    if (!outcome.wasCancelled) ends_.insert_or_assign(root, std::move(outcome.end));
    keep();
    startNext();
    Q_EMIT changed();
    // What a cancelled verification has read is known as well.
    if (!outcome.readings.empty()) {
        ReadingBatch read;
        read.archived[root] = std::move(outcome.readings);
        Q_EMIT archiveFilesRead(std::make_shared<const ReadingBatch>(std::move(read)));
    }
    if (hasChanged) Q_EMIT archiveChanged();
}

} // namespace corvane
