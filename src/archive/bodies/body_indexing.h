// Fills the search index of an archive with the texts of its messages. Extracting them is slow, so it goes in
// batches and several at a time, while one thread alone writes to the database; each batch is one
// transaction, and an interrupted run goes on where it stopped. Nothing here throws: what can't be read
// becomes an empty body, and is tried again by the next run. Blocks, on a background thread.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/platform.h"
#include "records/archived/archive_records.h"
#include "records/file_url.h"
#include "records/stores/app_support.h"
#include "text/shared_text.h"

namespace corvane {

class MailSearchIndex;
struct SearchIndexRow;

// A record and its .eml file.
struct BodyIndexItem {
    ArchivedEmailRecord record;
    FileURL fileURL;
};

// By path of the file.
using BodyTextByPath = std::unordered_map<SharedText, std::string, TextHash, TextEqual>;

// Gives the texts of some files; those without one are left out. Throws std::exception when it can give none.
// Called from several threads at once.
using BodyTextSource =
    std::function<BodyTextByPath(const std::vector<FileURL>& files, const std::stop_token& stop)>;

// The worker's texts, of at most 2 MiB of each file. With `isUpkeep` its processes yield the processor. The
// platform has to outlive the source.
BodyTextSource workerBodyTexts(const platform::Platform& platform, bool isUpkeep);

// Numbers done and of all; called on the thread that runs the indexing.
using BodyIndexProgress = std::function<void(std::int64_t done, std::int64_t total)>;

// The row of a record; the body is stored as it is.
SearchIndexRow searchIndexRow(const ArchivedEmailRecord& record, std::string body);

// Where the files of the records lie, in their order. An index is from outside: a path that leaves the root,
// by its text or by a link, and anything but a regular file that holds its content, counts as missing.
// `onStep` is called before each look. Looks at the place, without a limit of its own.
std::vector<BodyIndexItem> bodyIndexItems(const std::string& archiveRoot,
                                          const std::vector<ArchivedEmailRecord>& records,
                                          const std::function<void()>& onStep = {});

class BodyIndexing {
  public:
    static constexpr std::size_t messagesOfBatch = 150;

    BodyIndexing(CorvaneAppSupport support, BodyTextSource texts)
      : support_(std::move(support))
      , texts_(std::move(texts)) {}

    // Indexes what the index of this archive lacks, and again what has an empty body; with `force`
    // everything, after the index was emptied. A damaged database is begun anew. The number of messages
    // handed to indexing; 0 when the archive or the database can't be opened, or the place doesn't answer.
    // After a stop what was written stays.
    std::int64_t rebuildSearchIndex(const std::string& archiveRoot, bool force,
                                    const BodyIndexProgress& progress,
                                    const std::stop_token& stop = {}) const;

    // Those of the items that the index doesn't have, `batchSize` at a time.
    void indexBodies(const std::vector<BodyIndexItem>& items, MailSearchIndex& index, std::size_t batchSize,
                     const BodyIndexProgress& progress, const std::stop_token& stop = {}) const;

    // The body of one message that the library shows before the indexing has reached it: out of the index, or
    // out of the file and then put into the index. Absent when there is no text, or no index can be opened.
    std::optional<std::string> prepareBody(const std::string& archiveRoot, const ArchivedEmailRecord& record,
                                           const std::stop_token& stop = {}) const;

  private:
    std::int64_t fill(const std::string& archiveRoot, const EmailArchiveIndex& archive,
                      MailSearchIndex& index, bool force, const BodyIndexProgress& progress,
                      const std::stop_token& stop) const;

    CorvaneAppSupport support_;
    BodyTextSource texts_;
};

} // namespace corvane
