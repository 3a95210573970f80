#include "records/stores/presence_cache_store.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

#include "records/json/record_forms.h"
#include "records/stores/cache_file.h"

namespace corvane {

namespace {

// Written as a map; to find a status in it takes a real one.
struct ListedStatuses {
    using mapped_type = ArchivedOriginalPresenceStatus;

    std::vector<std::pair<std::string, mapped_type>> items;

    [[nodiscard]] auto begin() const { return items.begin(); }

    [[nodiscard]] auto end() const { return items.end(); }
};

template <class Statuses>
struct CacheFile {
    Date cachedAt{};
    std::string signature;
    Statuses statusesByEntryID;
};

constexpr std::string_view fileName = "archived-original-presence-cache.json";

} // namespace

template <class Statuses>
struct JsonForm<CacheFile<Statuses>> {
    using R = CacheFile<Statuses>;
    static constexpr auto fields =
        std::tuple{jsonField("cachedAt", &R::cachedAt), jsonField("signature", &R::signature),
                   jsonField("statusesByEntryID", &R::statusesByEntryID)};
};

std::optional<ArchivedOriginalPresenceCache>
ArchivedOriginalPresenceCacheStore::load(const std::string& signature) const {
    auto file = readRecordFile<CacheFile<PresenceByEntryID>>(support_.filePath(fileName));
    if (!file || file->signature != signature) return std::nullopt;
    return ArchivedOriginalPresenceCache{file->cachedAt, std::move(file->statusesByEntryID)};
}

void ArchivedOriginalPresenceCacheStore::save(
    const std::string& signature, Date checkedAt, const std::vector<ArchivedEntry>& entries,
    const std::vector<ArchivedOriginalPresenceStatus>& statuses) const {
    CacheFile<ListedStatuses> file{checkedAt, signature, {}};
    const std::size_t count = std::min(entries.size(), statuses.size());
    file.statusesByEntryID.items.reserve(count);
    for (std::size_t at = 0; at < count; ++at)
        file.statusesByEntryID.items.emplace_back(entries[at].id(), statuses[at]);
    std::ignore = support_.writeFile(fileName, encodeJson(file));
}

} // namespace corvane
