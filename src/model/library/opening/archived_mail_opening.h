// Opens archived mail and shows where it lies, and opens the original in Apple Mail. Main thread; the work is
// done in the background. One mail is opened at a time: another one takes its place.
#pragma once

#include <expected>
#include <functional>
#include <optional>
#include <string>

#include <QObject>

#include "model/library/opening/opening_texts.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/archived/archive_records.h"

namespace corvane {

class ArchivedMailOpening : public QObject {
    Q_OBJECT

  public:
    enum class Action {
        open,
        bringBack, // from the cloud where that is needed, and no more
    };

    // The path of the mail on this machine, or the text for the user.
    using Outcome = std::expected<std::string, std::string>;
    using OriginalAddress = std::expected<std::string, OriginalFailure>;
    using AddressAnswer = std::function<void(const OriginalAddress&)>;
    // Nullopt when it was opened.
    using Answer = std::function<void(std::optional<OriginalFailure>)>;

    explicit ArchivedMailOpening(ModelContext& context, QObject* parent = nullptr);

    // Waits up to two minutes for a file that a cloud has. A file that the system might execute is shown in
    // its folder instead.
    void openArchivedEmail(const ArchivedEntry& entry, Action action = Action::open);

    // What is being opened stays closed; nothing is told.
    void cancel();

    // The entry id of the mail that is being opened.
    [[nodiscard]] const std::optional<std::string>& openingArchiveID() const { return openingArchiveID_; }

    // Of the last mail; absent before it, while one is being opened, and for one that was cancelled.
    [[nodiscard]] const std::optional<Outcome>& outcome() const { return outcome_; }

    // Why the last mail wasn't opened; empty when it was, and while one is being opened.
    [[nodiscard]] std::string openArchiveError() const {
        return outcome_ && !*outcome_ ? outcome_->error() : std::string();
    }

    // A word on why the last one was only shown in its folder; empty otherwise.
    [[nodiscard]] const std::string& openArchiveNote() const { return openArchiveNote_; }

    // Shows the file, marked, in the file manager. No effect where the place has none.
    void revealArchivedEmail(const ArchivedEntry& entry);

    // Opens the original in Mail.
    void locateOriginalInMail(const ArchivedEmailRecord& record, Answer answer);

    // The address that Mail opens the original by.
    void originalAddress(const ArchivedEmailRecord& record, AddressAnswer answer);

  Q_SIGNALS:
    void changed();
    void ended();

  private:
    struct Opened;

    void finish(Opened opened);

    ModelContext& context_;
    std::optional<std::string> openingArchiveID_;
    std::optional<Outcome> outcome_;
    std::string openArchiveNote_;
    TaskSlot openTask_;
    TaskGroup lookTasks_;
};

} // namespace corvane
