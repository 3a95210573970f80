// The full-text store of one archive: subject, sender, recipients, attachment names and body of every
// archived message. It finds messages by any part of these texts, and hands back a body without reading the
// archive. A derived cache on the local disk, which can be rebuilt from the archive at any time.
//
// One instance owns one connection and may be used from several threads at once; several instances, in other
// processes too, may be open on one archive. Writers wait up to 5 seconds for each other. No operation throws
// or tells of a failure: a failed one gives the empty result or leaves the data as it was. All of them touch
// the disk, and those marked so read every row.
//
// All threads share the connection, and SQLite lets one statement of it step at a time. A connection for each
// reading thread would be opened when another one is busy, and by then the path may name another file or
// none: the index of an archive that was forgotten is removed while it is open here, and reads on.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/sqlite.h"
#include "records/stores/app_support.h"
#include "search/pair_search.h"
#include "search/substring_search.h"
#include "text/idle_pool.h"
#include "text/mutex.h"
#include "text/shared_text.h"

namespace corvane {

struct SearchIndexRow {
    SharedText id; // of the archived record
    SharedText subject;
    SharedText sender;
    SharedText recipients;
    std::string attachments; // names joined by single blanks
    std::string body;
};

// The ids of an index by whether their rows have a text. An id with several rows may be in both.
struct IndexedBodyStates {
    SharedTextSet withBody;
    SharedTextSet withoutBody;
};

class MailSearchIndex {
  public:
    static constexpr std::int64_t noMetaValue = std::numeric_limits<std::int64_t>::min();

    // Opens or creates the index of an archive, which need not be connected; null when that fails.
    static std::unique_ptr<MailSearchIndex> open(const CorvaneAppSupport& support,
                                                 std::string_view archiveRoot);

    // The same, but a file that turns out at once to be no database, or a damaged one, is begun anew.
    static std::unique_ptr<MailSearchIndex> openOrReset(const CorvaneAppSupport& support,
                                                        std::string_view archiveRoot);

    // Begins anew whatever the file holds, in place. Null when that fails, as while another one writes.
    static std::unique_ptr<MailSearchIndex> openReset(const CorvaneAppSupport& support,
                                                      std::string_view archiveRoot);

    // Adds the rows in one transaction. A row whose id is there already is added beside it, and the later one
    // answers for the id. The number of rows added: one that fails is left out, and when another one keeps
    // the lock so are all behind it. An error of the disk may cost them all.
    std::size_t bulkInsert(std::span<const SearchIndexRow> rows);

    // The ids of all records that hold the text in one of their columns, white space around it left out; none
    // for an empty text. ASCII letters match in either case, nothing has a special meaning. Reads every row
    // for one character, where many rows match, and for the first two characters after something was written.
    [[nodiscard]] SharedTextSet search(std::string_view query) const {
        return searchIfReadable(query).value_or(SharedTextSet());
    }

    // The same, but absent after an error, for who has to know that nothing was found from that it couldn't
    // be looked for.
    [[nodiscard]] std::optional<SharedTextSet> searchIfReadable(std::string_view query) const;

    // The same where that takes no reading of every row; absent for any other text.
    [[nodiscard]] std::optional<SharedTextSet> searchWithoutScan(std::string_view query) const;

    // For who looks only until some records were found. It must not outlive this.
    [[nodiscard]] search::RecordTest recordTest(std::string_view text) const;

    // The body as it was stored; absent when there is none or it counts as empty.
    [[nodiscard]] std::optional<std::string> body(std::string_view id) const;

    // Removes the row that answers for the id. One that can't be removed whole stays.
    void remove(std::string_view id);

    // Removes all rows.
    void clear();

    // Absent after an error: who takes that for an empty index would add all rows a second time. Reads every
    // row, but no texts.
    [[nodiscard]] std::optional<SharedTextSet> indexedIDs() const;

    // Rows were never made for even half of so many records: most of the archive's mail wasn't prepared for
    // searching. False after an error. Reads no rows.
    [[nodiscard]] bool lacksMostOf(std::size_t records) const;

    // The ids for which a row answers, without reading the rows. Absent after an error.
    [[nodiscard]] std::optional<SharedTextSet> mappedIDs() const;

    // Absent after an error. Reads every row.
    [[nodiscard]] std::optional<IndexedBodyStates> bodyStates() const;

    [[nodiscard]] SharedTextSet indexedIDsWithNonEmptyBody() const {
        return bodyStates().value_or(IndexedBodyStates()).withBody;
    }

    [[nodiscard]] SharedTextSet emptyBodyIDs() const {
        return bodyStates().value_or(IndexedBodyStates()).withoutBody;
    }

    // noMetaValue when there is none, or no decimal number.
    [[nodiscard]] std::int64_t metaInt(std::string_view key) const;
    void setMeta(std::string_view key, std::string_view value);

    [[nodiscard]] std::optional<std::int64_t> ftsRowID(std::string_view recordID) const;

    // An operation met a damaged place of the file. The others go on with what can be read.
    [[nodiscard]] bool isDamaged() const { return isDamaged_; }

    // Removes the databases of all archives but these.
    static void pruneOrphans(const CorvaneAppSupport& support, std::span<const std::string> liveRoots);

  private:
    [[nodiscard]] std::optional<SharedTextSet> idsBy(const char* sql) const;

    // Preparing costs several times what a look-up does.
    struct BodyLookup {
        explicit BodyLookup(sqlite3* database);

        platform::SqliteStatement rowIDOfRecord;
        platform::SqliteStatement bodyOfRow;
    };

    explicit MailSearchIndex(platform::SqliteConnection database);

    // Null for none.
    static std::unique_ptr<MailSearchIndex> make(platform::SqliteConnection database);
    void provideRecordMap();
    bool beginWriting() REQUIRES(writing_);

    // False when nothing of what was written since the beginning is kept.
    bool endWriting(bool isToBeKept) REQUIRES(writing_);

    // Absent when nothing may be kept.
    std::optional<std::size_t> insertRows(std::span<const SearchIndexRow> rows) REQUIRES(writing_);
    bool removeRow(std::string_view id) REQUIRES(writing_);
    bool insertRow(const SearchIndexRow& row, platform::SqliteStatement& insert) const;
    bool mapRow(std::string_view id, platform::SqliteStatement& map) const;
    bool runOnce(platform::SqliteStatement& statement) const;
    text::IdlePool<BodyLookup>::Lease bodyLookup() const;
    text::IdlePool<search::TrigramStatements>::Lease trigramStatements() const;
    std::optional<std::int64_t> rowIDOf(std::string_view recordID, BodyLookup& lookup) const;
    void recordStatus(int status) const;

    platform::SqliteConnection database_;
    std::atomic<bool> hasTrigrams_;
    mutable std::atomic<bool> isDamaged_ = false;
    text::Mutex writing_; // a transaction belongs to the connection, not to a thread
    mutable text::IdlePool<BodyLookup> bodyLookups_;
    mutable text::IdlePool<search::TrigramStatements> trigrams_;
    mutable text::Mutex searchingPairs_; // others wait: what they would gather themselves takes longer
    mutable search::PairStatements pairs_ GUARDED_BY(searchingPairs_);
};

} // namespace corvane
