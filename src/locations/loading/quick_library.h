// Single mails of the library without loading it, by the digests of its archives: the same answers, from what
// is needed for them alone. An archive whose index has changed is read for itself, which makes its digest
// anew. Where there is no digest there is no quick library, and a load of the whole one, which makes them all
// and notes the places, has to answer. Touches the disk; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "locations/loading/archive_digest.h"
#include "locations/places/place_looks.h"
#include "platform/platform.h"
#include "platform/settings_store.h"
#include "records/archived/archive_records.h"
#include "records/stores/app_support.h"
#include "text/shared_text.h"

namespace corvane {

class ArchiveIndexCache;
class MailSearchIndex;

namespace search {
class RecordTest;
}

class QuickLibrary {
  public:
    // One mail that was found, not yet read.
    struct Found {
        std::size_t archive = 0;
        ArchiveDigest::Position position = 0;
        std::optional<Date> date{};
    };

    struct Search {
        std::vector<SharedText> ids;              // of records, sorted, each once
        std::vector<std::string> unreadableRoots; // of archives that couldn't be asked
        std::vector<std::string> unpreparedRoots; // of those most of whose mail isn't in their index yet
    };

    // Looks at the places that a load would look at. Absent where only a load can tell what is in the
    // library.
    static std::optional<QuickLibrary> open(const platform::Platform& platform,
                                            const CorvaneAppSupport& support,
                                            const platform::SettingsStore& settings, PlaceLooks& looks);

    // Of archives that aren't in it, since their index can't be read.
    [[nodiscard]] const std::vector<std::string>& unreadableRoots() const { return unreadableRoots_; }

    // The mails that the name fits: of an entry id, else of a record id, else of a handle. Throws
    // DigestMisfit, as all below do.
    [[nodiscard]] std::vector<Found> find(std::string_view name) const;

    // All mails with that record id, one an archive.
    [[nodiscard]] std::vector<Found> withRecordID(std::string_view id) const;

    using Visit = std::function<void(ArchivedEntry)>;

    // Visits all mails with those record ids, the newest first and those without a date last; not more than
    // `limit`.
    void visitNewest(const std::vector<SharedText>& recordIDs, std::optional<std::int64_t> limit,
                     const Visit& visit) const;

    // What visitNewest() would visit of all that search() finds, for a text that so many mails hold that it
    // is quicker to ask the newest ones. Absent for any other text, and when something fails.
    [[nodiscard]] std::optional<std::vector<ArchivedEntry>> newestHolding(std::string_view text,
                                                                          std::int64_t limit) const;

    [[nodiscard]] ArchivedEntry entry(const Found& found) const;

    // As many digits of its handle as tell the mail from every other one, six at least.
    [[nodiscard]] std::string shortestHandle(std::string_view entryID) const;

    // The records that hold the text, of all archives.
    [[nodiscard]] Search search(std::string_view query) const;

    // The body of a record as the first index that has it tells; absent when none has.
    [[nodiscard]] std::optional<std::string> body(std::string_view recordID) const;

    // The text of the PresenceSignature of all mails.
    [[nodiscard]] std::string presenceSignature() const;

  private:
    struct Archive {
        std::string root;
        ArchiveDigest digest;
        bool isConnected = false;
    };

    struct RootState;

    explicit QuickLibrary(CorvaneAppSupport support)
      : support_(std::move(support)) {}

    static RootState lookAtRoot(PlaceLook& look, const platform::Platform& platform, const std::string& root);

    // False where only a load can tell what is in this archive.
    bool add(const ArchiveIndexCache& cache, const std::string& root, RootState state);

    // Of the same archives only one stays. False where only a load can tell which.
    bool dropRepeatedArchives(const ArchiveIndexCache& cache, PlaceLooks& looks);

    // The order in which they are asked.
    [[nodiscard]] std::vector<const Archive*> archivesByName() const;

    // The newest `count` of all, in that order.
    [[nodiscard]] std::vector<Found> newestOfAll(std::size_t count) const;

    [[nodiscard]] std::size_t size() const;

    // What one index has found already, while it was asked whether it can.
    struct Answer {
        std::string text;
        std::string root;
        SharedTextSet ids;
    };

    // For the indexes of all archives that have one.
    [[nodiscard]] std::vector<search::RecordTest> testsOf(std::string_view text) const;

    // Null for one that can't be opened.
    [[nodiscard]] const MailSearchIndex* searchIndex(const std::string& root) const;

    [[nodiscard]] std::optional<SharedTextSet> searchIn(const MailSearchIndex& index, const std::string& root,
                                                        std::string_view text) const;

    CorvaneAppSupport support_;
    std::vector<Archive> archives_; // in the order of the library
    std::vector<std::string> unreadableRoots_;
    mutable std::map<std::string, std::shared_ptr<const MailSearchIndex>> searchIndexes_; // that were asked
    mutable std::optional<Answer> answer_;
};

} // namespace corvane
