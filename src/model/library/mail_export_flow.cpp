#include "model/library/mail_export_flow.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "locations/places/destination_rules.h"
#include "locations/places/place_looks.h"
#include "model/tasks/progress_pace.h"

namespace corvane {

namespace {

struct ExportJob {
    MailExport system;
    ExportSelection selection;
    ExportFormat format = ExportFormat::mbox;
    std::string path;
    std::string mailRoot;
};

// Absent also for a place that doesn't answer, which the export then meets itself.
std::optional<std::string> refusal(const ExportJob& job, const std::stop_token& stop) {
    using Answer = std::optional<std::string>;
    PlaceLooks looks(job.system.platform, job.system.files, stop);
    return looks
        .ask<Answer>(job.path, [place = job.path, mailRoot = job.mailRoot](
                                   PlaceLook&) { return refusalInMail(place, mailRoot); })
        .value_or(std::nullopt);
}

MailExportFlow::Outcome exported(const ExportJob& job, const ReportingTask<MailExportFlow::Progress>& task) {
    ProgressPace pace;
    const auto report = [&](std::int64_t done, std::int64_t total) {
        if (pace.isDue(done, total)) task.report({done, total});
    };
    if (auto refused = refusal(job, task.stopToken())) return std::unexpected(std::move(*refused));
    try {
        return job.system.run(job.selection, job.format, job.path, report, task.stopToken());
    } catch (const std::exception& error) {
        return std::unexpected(std::string(error.what()));
    }
}

} // namespace

MailExportFlow::MailExportFlow(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , task_(context.tasks) {}

void MailExportFlow::start(ExportSelection selection, ExportFormat format, std::string path) {
    if (isRunning()) return;
    progress_ = Progress{0, std::ssize(selection.positions)};
    outcome_.reset();
    task_.startReporting<Progress>(
        TaskPriority::userInitiated,
        ExportJob{{context_.platform, context_.support.files()},
                  std::move(selection),
                  format,
                  std::move(path),
                  context_.mailRootPath},
        &exported,
        [this](Progress progress) {
            progress_ = progress;
            Q_EMIT changed();
        },
        [this](Outcome outcome) {
            progress_.reset();
            outcome_ = std::move(outcome);
            Q_EMIT changed();
            Q_EMIT ended();
        });
    Q_EMIT changed();
}

} // namespace corvane
