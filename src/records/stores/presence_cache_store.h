// "archived-original-presence-cache.json": which originals were still in Mail at the last comparison.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "records/archived/archive_records.h"
#include "records/stores/app_support.h"

namespace corvane {

using PresenceByEntryID = std::map<std::string, ArchivedOriginalPresenceStatus>;

struct ArchivedOriginalPresenceCache {
    Date cachedAt{}; // when Mail was asked
    PresenceByEntryID statusesByEntryID;
};

class ArchivedOriginalPresenceCacheStore {
  public:
    explicit ArchivedOriginalPresenceCacheStore(CorvaneAppSupport support)
      : support_(std::move(support)) {}

    // Absent when there is no file or its signature differs. Throws std::system_error or JsonError.
    [[nodiscard]] std::optional<ArchivedOriginalPresenceCache> load(const std::string& signature) const;

    struct Statuses {
        Date cachedAt{};                                        // when Mail was asked
        std::vector<ArchivedOriginalPresenceStatus> byPosition; // `unknown` for one that the cache lacks
    };

    // What the cache has of these entries; absent as above, and where it has none at all. Quick for entries
    // in the order in which they were saved. Throws as above.
    [[nodiscard]] std::optional<Statuses> statuses(const std::string& signature,
                                                   const std::vector<ArchivedEntry>& entries) const;

    // Of one entry, without keeping the others; absent where the cache has none for it or can't be read.
    [[nodiscard]] std::optional<ArchivedOriginalPresenceStatus> status(const std::string& signature,
                                                                       const std::string& entryID) const;

    // `statuses` has one for each entry, in their order. A failure is ignored.
    void save(const std::string& signature, Date checkedAt, const std::vector<ArchivedEntry>& entries,
              const std::vector<ArchivedOriginalPresenceStatus>& statuses) const;

  private:
    [[nodiscard]] std::optional<Statuses> statusesInOrder(const std::string& signature,
                                                          const std::vector<ArchivedEntry>& entries) const;

    CorvaneAppSupport support_;
};

} // namespace corvane
