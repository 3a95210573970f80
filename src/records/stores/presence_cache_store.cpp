#include "records/stores/presence_cache_store.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <fstream>
#include <string_view>
#include <tuple>
#include <utility>

#include "platform/files/directory.h"
#include "platform/files/mapped_file.h"
#include "records/json/presence_members.h"
#include "records/json/record_file.h"
#include "records/json/record_forms.h"

namespace corvane {

namespace {

struct CacheFile {
    Date cachedAt{};
    std::string signature;
    PresenceByEntryID statusesByEntryID;
};

constexpr std::string_view fileName = "archived-original-presence-cache.json";

constexpr std::size_t pieceBytes = std::size_t{1} << 18;

constexpr std::string_view opening = R"(,"statusesByEntryID":{)";
constexpr std::string_view closing = "}}";
constexpr std::size_t longestHead = 256;

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

template <>
struct JsonForm<CacheFile> {
    using R = CacheFile;
    static constexpr auto fields =
        std::tuple{jsonField("cachedAt", &R::cachedAt), jsonField("signature", &R::signature),
                   jsonField("statusesByEntryID", &R::statusesByEntryID)};
};

std::optional<ArchivedOriginalPresenceCache>
ArchivedOriginalPresenceCacheStore::load(const std::string& signature) const {
    auto file = readRecordFile<CacheFile>(support_.filePath(fileName));
    if (!file || file->signature != signature) return std::nullopt;
    return ArchivedOriginalPresenceCache{file->cachedAt, std::move(file->statusesByEntryID)};
}

std::optional<ArchivedOriginalPresenceCacheStore::Statuses>
ArchivedOriginalPresenceCacheStore::statuses(const std::string& signature,
                                             const std::vector<ArchivedEntry>& entries) const {
    StatusLookup lookup(support_.filePath(fileName));
    if (lookup.hasOurForm() && !lookup.hasSignature(signature)) return std::nullopt;
    if (auto inOrder = statusesInOrder(signature, entries)) return inOrder;
    const auto cache = load(signature);
    if (!cache || cache->statusesByEntryID.empty()) return std::nullopt;
    Statuses found{cache->cachedAt, {}};
    found.byPosition.reserve(entries.size());
    for (const ArchivedEntry& entry : entries) {
        const auto known = cache->statusesByEntryID.find(entry.id());
        const bool isKnown = known != cache->statusesByEntryID.end();
        found.byPosition.push_back(isKnown ? known->second : ArchivedOriginalPresenceStatus::unknown);
    }
    return found;
}

// Absent also where the cache was written of other entries, or in another order.
std::optional<ArchivedOriginalPresenceCacheStore::Statuses>
ArchivedOriginalPresenceCacheStore::statusesInOrder(const std::string& signature,
                                                    const std::vector<ArchivedEntry>& entries) const {
    const std::string path = support_.filePath(fileName);
    if (entries.empty() || !platform::isRegularFile(path)) return std::nullopt;
    const platform::MappedFile file(path);
    std::string_view text = file.text();
    const std::size_t head = text.substr(0, longestHead).find(opening);
    if (head == std::string_view::npos || !text.ends_with(closing)) return std::nullopt;
    const std::size_t start = head + opening.size();
    const auto frame = JsonReader().read<CacheFile>(std::string(text.substr(0, start)).append(closing));
    if (frame.signature != signature) return std::nullopt;
    text = text.substr(start, text.size() - start - closing.size());
    auto members = readPresenceMembers(text, entries);
    if (!members) return std::nullopt;
    return Statuses{frame.cachedAt, *std::move(members)};
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
    const std::string frame = encodeJson(CacheFile{checkedAt, signature, {}});
    const std::string_view head = std::string_view(frame).substr(0, frame.size() - closing.size());
    std::ignore = support_.writeFile(fileName, [&](const platform::ByteSink& sink) {
        sink(head);
        writePresenceMembers(entries, statuses, sink);
        sink(closing);
    });
}

} // namespace corvane
