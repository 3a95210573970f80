// Whether the originals of archived mail are still in Mail. What an earlier comparison found is shown from
// its cache; Mail is asked only when somebody wants it to be. Main thread; all that takes time is background
// work, and a result for entries that aren't the library's any more is dropped.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <QObject>

#include "model/library/presence/original_presence.h"
#include "model/library/presence/presence_check.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class PresenceFlow : public QObject {
    Q_OBJECT

  public:
    explicit PresenceFlow(ModelContext& context, QObject* parent = nullptr);

    // What is known; never null. For a moment after the library has changed it is still of the entries
    // before: whoever joins the two compares the lists.
    [[nodiscard]] const SharedPresence& presence() const { return presence_; }

    // Of an entry of that list; `unknown` for any other one.
    [[nodiscard]] ArchivedOriginalPresenceStatus
    archivedOriginalPresenceStatus(const ArchivedEntry& entry) const {
        return presence_->statusOf(entry);
    }

    // The same, but `unknown` where only an earlier run of the program has asked.
    [[nodiscard]] ArchivedOriginalPresenceStatus statusOfThisRun(const ArchivedEntry& entry) const {
        return presence_->isOfEarlierRun ? ArchivedOriginalPresenceStatus::unknown
                                         : presence_->statusOf(entry);
    }

    // Why the last question to Mail had no answer, for the user; absent before one and after an answer.
    [[nodiscard]] const std::optional<std::string>& questionFailure() const { return questionFailure_; }

    // Mail is being asked.
    [[nodiscard]] bool archivedOriginalPresenceChecking() const { return isChecking_; }

    // The library's entries, after each of its changes; never null. Other ids or Message-IDs make all that
    // was known stale.
    void setEntries(SharedEntryList entries);

    // Shows what the cache holds for these entries; where `force` is set, asks Mail as well, in the place of
    // a question that is under way. `presenceChanged` follows each change.
    void refreshArchivedOriginalPresenceIfNeeded(bool force);

    // Forgets what is known, but for the cache, and gives up a question that is under way.
    void markArchivedOriginalPresenceStale();

  Q_SIGNALS:
    // `presence`, or whether Mail is being asked.
    void presenceChanged();

  private:
    enum class Wanted { nothing, cached, asked };

    void relate(const SharedPresence& earlier);
    void entriesRelated(SharedPresence presence);
    void adopt(const SharedPresence& presence, bool isChecking);
    void end(const PresenceEnd& end);
    void publish(SharedPresence presence, bool isChecking);

    ModelContext& context_;
    SharedPresence presence_ = std::make_shared<const OriginalPresence>();
    SharedEntryList entries_ = presence_->entries; // as the library has them; `presence_` follows
    bool isChecking_ = false;
    std::optional<std::string> questionFailure_;
    Wanted wanted_ = Wanted::nothing;               // once it is known what these entries are
    std::string archivedOriginalPresenceSignature_; // of what was refreshed last; empty: stale
    TaskSlot relateTask_;
    TaskSlot archivedOriginalPresenceTask_;
};

} // namespace corvane
