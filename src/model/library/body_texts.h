// The texts of archived mail for the screens: bodies, "cc" lines, full-text search over all archives, and the
// filling of the search indexes. Main thread; what is slow runs in the background, and only small caches are
// looked at here. Answers come on the main thread, at once where a cache has them, and never after this
// object is gone. Nothing here reports an error: a text that can't be had is absent.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <vector>

#include <QObject>

#include "archive/bodies/body_indexing.h"
#include "locations/loading/archive_search.h"
#include "model/library/library_loader.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/archived/archive_records.h"

namespace corvane {

// One filling of search indexes.
struct BodyIndexRequest {
    std::vector<std::string> roots;
    std::int64_t total = 0; // messages, for the first line of progress
    bool force = false;     // empties the indexes first
    bool reloadWhenDone = true;
    bool isRepair = false; // asked for by the program
};

class BodyTexts : public QObject {
    Q_OBJECT

  public:
    using TextAnswer = std::function<void(const std::optional<std::string>&)>;
    using SearchAnswer = std::function<void(ArchiveSearchResult)>;

    // `texts` replaces the worker in tests.
    BodyTexts(ModelContext& context, LibraryLoader& library, QObject* parent = nullptr,
              const BodyTextSource& texts = {});

    // The body of an archived message as some index has it.
    void indexedBody(const ArchivedEmailRecord& record, TextAnswer answer);

    // The same, and when no index has it out of the message's file, which puts it into the index.
    void prepareIndexedBody(const ArchivedEntry& entry, TextAnswer answer);

    // From the record, or from the start of the file if that is on this machine: it is never downloaded.
    void ccRecipients(const ArchivedEntry& entry, TextAnswer answer);

    // Looks for the text in all archives, connected or not. The answer has the ids of the records that hold
    // it, and the archives that couldn't be asked, of which it says nothing else.
    void searchArchive(std::string query, SearchAnswer answer);

    // Indexes what is missing in all locations, or everything anew.
    void rebuildBodyTextIndex(bool force);

    [[nodiscard]] BodyIndexRequest requestForAllLocations(bool force) const;

    // Begins when earlier requests have ended.
    void rebuildBodyTextIndex(BodyIndexRequest request);

    // After an archive run: what it brought is indexed, when earlier requests have ended. No effect for the
    // signature of last time.
    void scheduleBodyTextIndexRepair(const std::vector<std::string>& roots, std::int64_t total,
                                     const std::string& signature);

    // Without it the scheduled repairs don't happen.
    void setAutomaticRepair(bool isOn) { repairsAutomatically_ = isOn; }

    // Ends the indexing after the batch that is being written, and drops what waits.
    void cancelBodyTextIndex();

    // Present while indexes are being filled.
    [[nodiscard]] const std::optional<EmailArchiveProgress>& bodyIndexProgress() const { return progress_; }

  Q_SIGNALS:
    void bodyIndexProgressChanged();
    // An indexing has ended, having handled this many messages.
    void bodyIndexFinished(qint64 indexed);
    // The library is to be loaded anew, so that it reads the filled indexes.
    void libraryReloadWanted();

  private:
    void storeBody(const SharedText& id, const std::optional<std::string>& body);
    void startPreparing(const ArchivedEntry& entry, TextAnswer answer);
    void finishPreparing(const ArchivedEntry& entry, const std::optional<std::string>& body);
    void startNextIndexing();
    void finishIndexing(std::int64_t indexed);
    [[nodiscard]] bool isRepairWaiting(const std::vector<std::string>& roots) const;
    void setProgress(std::optional<EmailArchiveProgress> progress);

    ModelContext& context_;
    LibraryLoader& library_;
    BodyTextSource texts_;                                               // for what the user waits for
    BodyTextSource upkeepTexts_;                                         // for the indexing
    std::unordered_map<SharedText, std::string> indexedBodyMemoryCache_; // by record id
    std::size_t cachedBytes_ = 0;
    std::unordered_map<SharedText, std::string> ccRecipientsCache_;      // empty for a known absence
    std::unordered_map<std::string, std::vector<TextAnswer>> preparing_; // by entry id, who waits
    std::deque<BodyIndexRequest> waitingIndexing_;
    std::optional<BodyIndexRequest> runningIndexing_;
    std::optional<EmailArchiveProgress> progress_;
    bool repairsAutomatically_ = true;
    std::string lastBodyIndexRepairSignature_;
    TaskGroup answerTasks_;
    TaskSlot indexTask_;
};

} // namespace corvane
