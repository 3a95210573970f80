#include "records/archived/content_hash.h"

#include <charconv>
#include <cstddef>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace corvane {

namespace {

constexpr std::string_view prefix = "sha256:";

bool isHexDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

} // namespace

std::string hexDigits(const platform::Sha256Digest& digest) {
    return fmt::format("{:02x}", fmt::join(digest, ""));
}

std::string contentHashText(const platform::Sha256Digest& digest) {
    return std::string(prefix) + hexDigits(digest);
}

std::optional<platform::Sha256Digest> parseContentHash(std::string_view text) {
    if (!text.starts_with(prefix)) return std::nullopt;
    text.remove_prefix(prefix.size());
    platform::Sha256Digest digest;
    if (text.size() != 2 * digest.size()) return std::nullopt;
    for (std::size_t position = 0; position < digest.size(); ++position) {
        const char* pair = text.data() + 2 * position;
        if (!isHexDigit(pair[0]) || !isHexDigit(pair[1])) return std::nullopt;
        std::from_chars(pair, pair + 2, digest[position], 16);
    }
    return digest;
}

} // namespace corvane
