#include "archive/message_extraction.h"

#include <algorithm>
#include <map>

#include "text/charset.h"
#include "text/encoding.h"
#include "text/trim.h"

namespace corvane::archive {

namespace {

// Bodies that first differ behind these bytes count as identical: the settled trade of speed against
// certainty.
constexpr std::size_t comparedBytes = 8192;

struct Fingerprint {
    std::size_t bodyLength;
    std::string_view bodyStart;

    friend auto operator<=>(const Fingerprint&, const Fingerprint&) = default;
};

Fingerprint fingerprintOf(std::string_view message) {
    const std::string_view body = message.substr(bodyStartIndex(message));
    return {body.size(), body.substr(0, comparedBytes)};
}

} // namespace

std::optional<std::string_view> messageData(std::string_view emlx) {
    const std::size_t lineEnd = emlx.find('\n');
    if (lineEnd == std::string_view::npos) return std::nullopt;
    const std::string_view line = emlx.substr(0, lineEnd);
    if (!text::isValidUtf8(line)) return std::nullopt;
    const auto count = text::parseInteger(text::trimWhitespaceAndNewlines(line));
    if (!count || *count < 0) return std::nullopt;
    const std::string_view rest = emlx.substr(lineEnd + 1);
    return rest.substr(0, std::min<std::uint64_t>(static_cast<std::uint64_t>(*count), rest.size()));
}

std::size_t bodyStartIndex(std::string_view message) {
    for (std::size_t at = message.find_first_of("\r\n"); at != std::string_view::npos;
         at = message.find_first_of("\r\n", at + 1)) {
        const std::string_view rest = message.substr(at);
        if (rest.starts_with("\r\n\r\n")) return at + 4;
        if (rest.starts_with("\n\n")) return at + 2;
    }
    return message.size();
}

std::vector<std::vector<StoredCopy>> groupByBody(std::vector<StoredCopy> copies) {
    std::vector<std::vector<StoredCopy>> groups;
    if (copies.size() == 1) {
        groups.push_back(std::move(copies));
        return groups;
    }
    std::map<Fingerprint, std::size_t> groupOf;
    for (StoredCopy& copy : copies) {
        const auto [known, isNew] = groupOf.try_emplace(fingerprintOf(copy.data), groups.size());
        if (isNew) groups.emplace_back();
        groups[known->second].push_back(std::move(copy));
    }
    return groups;
}

} // namespace corvane::archive
