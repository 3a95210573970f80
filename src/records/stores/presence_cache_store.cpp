#include "records/stores/presence_cache_store.h"

#include <tuple>

#include "records/json/record_forms.h"
#include "records/stores/cache_file.h"

namespace corvane {

template <>
struct JsonForm<ArchivedOriginalPresenceCache> {
    using R = ArchivedOriginalPresenceCache;
    static constexpr auto fields =
        std::tuple{jsonField("cachedAt", &R::cachedAt), jsonField("signature", &R::signature),
                   jsonField("statusesByEntryID", &R::statusesByEntryID)};
};

namespace {

constexpr std::string_view fileName = "archived-original-presence-cache.json";

} // namespace

std::optional<PresenceByEntryID>
ArchivedOriginalPresenceCacheStore::load(const std::string& signature) const {
    auto cache = readRecordFile<ArchivedOriginalPresenceCache>(support_.filePath(fileName));
    if (!cache || cache->signature != signature) return std::nullopt;
    return std::move(cache->statusesByEntryID);
}

void ArchivedOriginalPresenceCacheStore::save(const std::string& signature,
                                              const PresenceByEntryID& statuses) const {
    std::ignore = support_.writeFile(
        fileName, encodeJson(ArchivedOriginalPresenceCache{currentTimestamp(), signature, statuses}));
}

} // namespace corvane
