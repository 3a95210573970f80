#include "archive/bodies/cc_line.h"

#include <cstdint>

#include "archive/bodies/body_indexing.h"
#include "mime/header_decoding.h"
#include "platform/files/directory.h"

namespace corvane {

namespace {

constexpr std::int64_t bytesWithHeader = 65536;

} // namespace

std::optional<std::string> ccLineOfFile(const platform::Platform& platform, const ArchivedEntry& entry) {
    const auto items = bodyIndexItems(entry.locationRootPath.str(), {entry.record});
    if (items.empty()) return std::nullopt;
    const std::string path = items.front().fileURL.path().str();
    if (platform.isCloudPlaceholder(path)) return std::nullopt;
    const auto start = platform::readFilePrefix(path, bytesWithHeader);
    if (!start) return std::nullopt;
    return mime::decodedHeaderField("cc", *start).value_or("");
}

} // namespace corvane
