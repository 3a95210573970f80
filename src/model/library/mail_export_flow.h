// Exports archived mail in the background, with progress and cancel. Main thread.
#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>

#include <QObject>

#include "archive/export/mail_export.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class MailExportFlow : public QObject {
    Q_OBJECT

  public:
    struct Progress {
        std::int64_t done = 0;
        std::int64_t total = 0;
    };

    // A result, or the text for the user on why there is none.
    using Outcome = std::expected<ExportResult, std::string>;

    explicit MailExportFlow(ModelContext& context, QObject* parent = nullptr);

    // See MailExport::run. No effect while one runs.
    void start(ExportSelection selection, ExportFormat format, std::string path);

    // The result says what is left.
    void cancel() { task_.requestStop(); }

    [[nodiscard]] bool isRunning() const { return task_.isRunning(); }

    // Absent when nothing is being exported.
    [[nodiscard]] const std::optional<Progress>& progress() const { return progress_; }

    // Of the last export; absent before it and while one runs.
    [[nodiscard]] const std::optional<Outcome>& outcome() const { return outcome_; }

  Q_SIGNALS:
    void changed();
    void ended();

  private:
    ModelContext& context_;
    std::optional<Progress> progress_;
    std::optional<Outcome> outcome_;
    TaskSlot task_;
};

} // namespace corvane
