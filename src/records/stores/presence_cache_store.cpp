#include "records/stores/presence_cache_store.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <fstream>
#include <string_view>
#include <tuple>
#include <utility>

#include "platform/files/directory.h"
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

constexpr std::size_t pieceBytes = std::size_t{1} << 18;

// Passes over the statuses in pieces. What is expected of their text is how save() writes it.
class StatusLookup {
  public:
    explicit StatusLookup(const std::string& path)
      : file_(platform::isRegularFile(path) ? path : std::string(), std::ios::binary) {
        readOn();
    }

    // Whether save() wrote the file, as far as its beginning and its end tell.
    bool hasOurForm() {
        if (!window_.starts_with(R"({"cachedAt":")")) return false;
        const std::size_t at = window_.find(signatureKey);
        if (at == std::string::npos || at > longestTime) return false;
        char end[2] = {};
        file_.clear();
        const std::streamoff position = file_.tellg();
        const bool isWhole = file_.seekg(-2, std::ios::end).read(end, 2) && std::string_view(end, 2) == "}}";
        file_.clear();
        file_.seekg(position);
        return isWhole;
    }

    bool hasSignature(const std::string& signature) const {
        const std::size_t at = window_.find(signatureKey) + signatureKey.size();
        return std::string_view(window_).substr(at).starts_with(encodeJson(signature) +
                                                                R"(,"statusesByEntryID":{)");
    }

    std::optional<ArchivedOriginalPresenceStatus> find(const std::string& entryID) {
        const std::string key = encodeJson(entryID) + ":\"";
        constexpr std::size_t longestValue = 16;
        do {
            for (std::size_t at = window_.find(key, 1); at != std::string::npos;
                 at = window_.find(key, at + 1)) {
                if (window_[at - 1] != ',' && window_[at - 1] != '{') continue;
                if (window_.size() - at < key.size() + longestValue && readOn()) return find(entryID);
                return statusNamed(std::string_view(window_).substr(at + key.size()));
            }
            const std::size_t kept = std::min(window_.size(), key.size() + 1);
            window_.erase(0, window_.size() - kept);
        } while (readOn());
        return std::nullopt;
    }

  private:
    static constexpr std::string_view signatureKey = R"(","signature":)";
    static constexpr std::size_t longestTime = 64;

    static std::optional<ArchivedOriginalPresenceStatus> statusNamed(std::string_view text) {
        for (const auto& [status, name] : JsonEnumForm<ArchivedOriginalPresenceStatus>::names) {
            if (text.substr(0, text.find('"')) == name) return status;
        }
        return std::nullopt;
    }

    // False at the end.
    bool readOn() {
        const std::size_t before = window_.size();
        window_.resize(before + pieceBytes);
        file_.read(window_.data() + before, pieceBytes);
        window_.resize(before + static_cast<std::size_t>(file_.gcount()));
        return window_.size() > before;
    }

    std::ifstream file_;
    std::string window_;
};

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

std::optional<ArchivedOriginalPresenceStatus>
ArchivedOriginalPresenceCacheStore::status(const std::string& signature, const std::string& entryID) const {
    StatusLookup lookup(support_.filePath(fileName));
    if (lookup.hasOurForm()) return lookup.hasSignature(signature) ? lookup.find(entryID) : std::nullopt;
    try {
        const auto cache = load(signature);
        if (!cache) return std::nullopt;
        const auto found = cache->statusesByEntryID.find(entryID);
        return found == cache->statusesByEntryID.end() ? std::nullopt : std::optional(found->second);
    } catch (const std::exception&) {
        return std::nullopt;
    }
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
