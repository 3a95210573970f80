// The one archive run at a time: its start, its progress, its end. Main thread; the run itself is a
// background job, and writes through the context's file layer.
#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QObject>

#include "model/archiving/selection/archive_selection.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/archived/archive_records.h"
#include "records/archived/proof_facts.h"
#include "records/mail_message_record.h"

namespace corvane {

class ArchiveRunFlow : public QObject {
    Q_OBJECT

  public:
    // A result, or the user's text of what kept the run from happening.
    using RunOutcome = std::expected<EmailArchiveRunResult, std::string>;
    using Completion = std::function<void(RunOutcome)>;

    explicit ArchiveRunFlow(ModelContext& context, QObject* parent = nullptr);

    // Archives those of the candidates that are selected, in their order. Its first progress is there when
    // this returns. `completion` is called once, on the main thread, when the run's place is free again; at
    // once for a run that can't begin.
    void archiveSelectedEmails(SharedMessageList candidates, ArchiveSelection selection,
                               const std::optional<std::string>& destination, Completion completion);

    // The run stops after the message at work and reports through its completion.
    void cancelEmailArchive() { runTask_.requestStop(); }

    [[nodiscard]] bool isArchiving() const { return completion_ != nullptr; }

    // Present exactly while a run is under way.
    [[nodiscard]] const std::optional<EmailArchiveProgress>& emailArchiveProgress() const {
        return progress_;
    }

  Q_SIGNALS:
    void progressChanged();
    // A run has begun; archiveRunEnded follows, whatever becomes of it.
    void archiveRunStarted();
    // A run has ended with a result. Runs of the same messages into the same place have the same signature.
    void archiveRunFinished(const corvane::EmailArchiveRunResult& result, const QString& destination,
                            const QString& signature);
    // Before it: what the run has read. Never null.
    void archiveFilesRead(const std::shared_ptr<const corvane::ReadingBatch>& readings);
    // Behind it, and when the run has failed.
    void archiveRunEnded();

  private:
    void setProgress(std::optional<EmailArchiveProgress> progress);
    void finishRun(RunOutcome outcome, const std::string& destination, const std::string& signature,
                   const std::shared_ptr<const ReadingBatch>& readings);

    ModelContext& context_;
    std::optional<EmailArchiveProgress> progress_;
    Completion completion_;
    TaskSlot runTask_;
};

} // namespace corvane
