#include "records/stores/scan_cache_file.h"

#include "platform/files/directory.h"
#include "records/json/json_pieces.h"
#include "records/json/json_reader.h"
#include "records/stores/scan_cache_forms.h"

namespace corvane {

namespace {

constexpr std::int64_t bytesOfFirstMember = 128;
constexpr std::string_view beforeScanTime = R"({"scannedAt":)";

// Both lists come in the order of the scan, so one walk finds the twins.
void shareIdentifiers(MailScanCache& cache) {
    if (!cache.locallyAvailableMessageIDs) return;
    auto message = cache.messages.begin();
    for (SharedText& id : *cache.locallyAvailableMessageIDs) {
        const auto twin =
            std::find_if(message, cache.messages.end(),
                         [&](const MailMessageRecord& candidate) { return candidate.id == id; });
        if (twin == cache.messages.end()) return;
        id = twin->id;
        message = std::next(twin);
    }
}

} // namespace

void encodeScanCache(const ScanCacheContent& content, const platform::ByteSink& sink) {
    encodeJsonInPieces(content, sink);
}

MailScanCache decodeScanCache(std::string_view json) {
    auto cache = decodeJsonInPieces<MailScanCache>(json);
    shareIdentifiers(cache);
    return cache;
}

std::optional<MailScanCache> readScanCacheFile(const std::string& path) {
    auto cache = readRecordFileInPieces<MailScanCache>(path);
    if (cache) shareIdentifiers(*cache);
    return cache;
}

std::optional<Date> readScanTime(const std::string& path) {
    const auto start = platform::readFilePrefix(path, bytesOfFirstMember);
    if (!start || !start->starts_with(beforeScanTime)) return std::nullopt;
    const std::string_view rest = std::string_view(*start).substr(beforeScanTime.size());
    try {
        const auto times = JsonReader().readElements<Date>(rest.substr(0, rest.find(',')));
        return times.empty() ? std::nullopt : std::optional(times.front());
    } catch (const JsonError&) {
        return std::nullopt;
    }
}

} // namespace corvane
