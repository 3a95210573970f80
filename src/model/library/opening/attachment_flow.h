// The attachments of archived mail for tiles, and their saving. Main thread; the work is done in the
// background. Answers come on the main thread, and never after this object is gone.
#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "archive/attachments/attachment_saving.h"
#include "archive/attachments/thumbnail_maker.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/archived/archive_records.h"

namespace corvane {

// Those of a mail that are shown to people.
std::vector<AttachmentRef> displayableAttachments(const ArchivedEntry& entry);

class AttachmentFlow : public QObject {
    Q_OBJECT

  public:
    struct Progress {
        std::int64_t done = 0;
        std::int64_t total = 0;
    };

    // A value, or the text for the user.
    using PathAnswer = std::function<void(const std::expected<std::string, std::string>& path)>;
    using SavedAnswer = std::function<void(const std::expected<SavedAttachment, std::string>&)>;
    using ThumbnailAnswer = std::function<void(Thumbnail thumbnail)>;
    using SavingOutcome = std::expected<AttachmentSaving, std::string>;

    explicit AttachmentFlow(ModelContext& context, QObject* parent = nullptr);

    // Gives a file with the attachment, in the cache of this run.
    void prepareAttachment(AttachmentRef attachment, PathAnswer answer);

    // The same, and opens it; what the system might execute is shown in its folder. The value is a word on
    // that, empty when it was opened.
    void openAttachment(AttachmentRef attachment, PathAnswer answer);

    // A small picture of a prepared file, neither side above `edge`. No answer for what is no picture, for
    // one that can't be decoded within the limits, and where the program for it isn't there.
    void makeThumbnail(std::string path, int edge, ThumbnailAnswer answer);

    // As a new file, or in a folder that is there.
    void saveAttachment(AttachmentRef attachment, std::string target, SavedAnswer answer);

    // Several into a folder, under names that are free. Another saving that is under way is cancelled.
    void saveAttachments(std::vector<AttachmentRef> attachments, std::string folder);

    // Ends after the attachment at work; what was saved stays, and is told.
    void cancelSaving() { savingTask_.requestStop(); }

    // Absent when nothing is being saved.
    [[nodiscard]] const std::optional<Progress>& savingProgress() const { return progress_; }

    // Of the last saving; absent before it and while one runs.
    [[nodiscard]] const std::optional<SavingOutcome>& savingOutcome() const { return outcome_; }

  Q_SIGNALS:
    void savingChanged();
    void savingEnded();

  private:
    [[nodiscard]] ArchivedAttachmentExtractor extractor() const;

    ModelContext& context_;
    std::shared_ptr<archive::AttachmentCache> cache_;
    std::optional<Progress> progress_;
    std::optional<SavingOutcome> outcome_;
    TaskGroup tasks_;
    TaskSlot savingTask_;
};

} // namespace corvane
