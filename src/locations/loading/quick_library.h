// Single mails of the library without loading it, by the digests of its archives: the same answers, from what
// is needed for them alone. Where a digest is missing or doesn't fit there is no quick library, and a load of
// the whole one, which makes the digests anew, has to answer. Touches the disk; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
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

namespace corvane {

class ArchiveIndexCache;
class MailSearchIndex;

class QuickLibrary {
  public:
    // One mail that was found, not yet read.
    struct Found {
        std::size_t archive = 0;
        ArchiveDigest::Position position = 0;
        std::optional<Date> date{};
    };

    struct Search {
        std::vector<std::string> ids;             // of records, sorted, each once
        std::vector<std::string> unreadableRoots; // of archives that couldn't be asked
    };

    // Looks at the places that a load would look at. Absent where only a load can tell what is in the
    // library.
    static std::optional<QuickLibrary> open(const platform::Platform& platform,
                                            const CorvaneAppSupport& support,
                                            const platform::SettingsStore& settings, PlaceLooks& looks);

    // The mails that the name fits: of an entry id, else of a record id, else of a handle. Throws
    // DigestMisfit, as all below do.
    [[nodiscard]] std::vector<Found> find(std::string_view name) const;

    // All mails with that record id, one an archive.
    [[nodiscard]] std::vector<Found> withRecordID(std::string_view id) const;

    // All mails with those record ids, the newest first and those without a date last; not more than `limit`.
    [[nodiscard]] std::vector<ArchivedEntry> newest(const std::vector<std::string>& recordIDs,
                                                    std::optional<std::int64_t> limit) const;

    [[nodiscard]] ArchivedEntry entry(const Found& found) const;

    // As many digits of its handle as tell the mail from every other one, six at least.
    [[nodiscard]] std::string shortestHandle(std::string_view entryID) const;

    // The records that hold the text, of all archives.
    [[nodiscard]] Search search(std::string_view text) const;

    // The body of a record as the first index that has it tells; absent when none has.
    [[nodiscard]] std::optional<std::string> body(std::string_view recordID) const;

    // The text of the PresenceSignature of all mails.
    [[nodiscard]] std::string presenceSignature() const;

  private:
    struct Archive {
        std::string root;
        ArchiveDigest digest;
    };

    struct RootState;

    explicit QuickLibrary(CorvaneAppSupport support)
      : support_(std::move(support)) {}

    static RootState lookAtRoot(PlaceLook& look, const platform::Platform& platform, const std::string& root);

    // False where only a load can tell what is in this archive.
    bool add(const ArchiveIndexCache& cache, const std::string& root, const RootState& state);

    // The order in which they are asked.
    [[nodiscard]] std::vector<std::string> rootsByName() const;

    // Null for one that can't be opened.
    [[nodiscard]] const MailSearchIndex* searchIndex(const std::string& root) const;

    CorvaneAppSupport support_;
    std::vector<Archive> archives_; // in the order of the library
    mutable std::map<std::string, std::shared_ptr<const MailSearchIndex>> searchIndexes_; // that were asked
};

} // namespace corvane
