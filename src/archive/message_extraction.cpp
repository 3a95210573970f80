#include "archive/message_extraction.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "text/charset.h"
#include "text/encoding.h"
#include "text/trim.h"

namespace corvane::archive {

namespace {

constexpr std::size_t comparedBodyBytes = 8192;

bool haveEqualBodies(std::string_view a, std::string_view b) noexcept {
    return a.size() == b.size() && a.substr(0, comparedBodyBytes) == b.substr(0, comparedBodyBytes);
}

} // namespace

std::optional<MessageBytes> MessageBytes::fromEmlx(std::string file) {
    auto shared = std::make_shared<const std::string>(std::move(file));
    const auto bytes = messageData(*shared);
    if (!bytes) return std::nullopt;
    return MessageBytes{std::move(shared), *bytes};
}

std::optional<std::string_view> messageData(std::string_view emlx) {
    const std::size_t lineEnd = emlx.find('\n');
    if (lineEnd == std::string_view::npos) return std::nullopt;
    const std::string_view line = emlx.substr(0, lineEnd);
    if (!text::isValidUtf8(line)) return std::nullopt;
    const auto count = text::parseInteger(text::trimWhitespaceAndNewlines(line));
    if (!count || *count < 0) return std::nullopt;
    return emlx.substr(lineEnd + 1, static_cast<std::uint64_t>(*count));
}

std::size_t bodyStartIndex(std::string_view message) noexcept {
    std::size_t feed = message.find('\n');
    while (feed != std::string_view::npos) {
        const std::string_view rest = message.substr(feed);
        if (rest.starts_with("\n\n")) return feed + 2;
        if (feed > 0 && message[feed - 1] == '\r' && rest.starts_with("\n\r\n")) return feed + 3;
        feed = message.find('\n', feed + 1);
    }
    return message.size();
}

void groupByBody(MessageBytes copy, std::vector<BodyGroup>& groups) {
    const std::string_view body = copy.bytes.substr(bodyStartIndex(copy.bytes));
    const auto group = std::ranges::find_if(
        groups, [&](const BodyGroup& known) { return haveEqualBodies(known.body, body); });
    if (group == groups.end()) {
        groups.push_back({std::move(copy), body});
    } else if (copy.bytes.size() > group->largest.bytes.size()) {
        *group = {std::move(copy), body};
    }
}

} // namespace corvane::archive
