#include "archive/message_extraction.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "text/charsets/charset.h"
#include "text/charsets/encoding.h"
#include "text/trim.h"

namespace corvane::archive {

namespace {

// What the first line of an .emlx file says; absent when it says nothing.
std::optional<std::int64_t> announcedCount(std::string_view emlx) {
    const std::size_t lineEnd = emlx.find('\n');
    if (lineEnd == std::string_view::npos) return std::nullopt;
    const std::string_view line = emlx.substr(0, lineEnd);
    if (!text::isValidUtf8(line)) return std::nullopt;
    const auto count = text::parseInteger(text::trimWhitespaceAndNewlines(line));
    return count && *count >= 0 ? count : std::nullopt;
}

// A name of printable characters and a colon (RFC 5322, 2.2), blanks before the colon as old mail has them.
bool isField(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return false;
    const std::string_view name = line.substr(0, line.find_last_not_of(" \t", colon - 1) + 1);
    return colon > 0 && !name.empty() &&
           std::ranges::all_of(name, [](char c) { return c > ' ' && c < 0x7f; });
}

// `follows` says that there is a field before it. Of an mbox the first line tells where the mail came from.
bool isHeaderLine(std::string_view line, bool follows) {
    if (follows) return line.starts_with(' ') || line.starts_with('\t') || isField(line);
    return line.starts_with("From ") || line.starts_with(">From ") || isField(line);
}

} // namespace

std::optional<MessageBytes> MessageBytes::fromEmlx(std::string file) {
    auto shared = std::make_shared<const std::string>(std::move(file));
    const auto bytes = messageData(*shared);
    if (!bytes) return std::nullopt;
    return MessageBytes{std::move(shared), *bytes};
}

std::string_view MessageBytes::body() const {
    return bytes.substr(bodyStartIndex(bytes));
}

std::optional<std::string_view> messageData(std::string_view emlx) {
    const auto count = announcedCount(emlx);
    if (!count) return std::nullopt;
    return emlx.substr(emlx.find('\n') + 1, static_cast<std::uint64_t>(*count));
}

bool isWholeMessage(std::string_view emlx, std::string_view message) {
    return announcedCount(emlx) == static_cast<std::int64_t>(message.size()) &&
           message.find_first_not_of('\0') != std::string_view::npos;
}

std::size_t bodyStartIndex(std::string_view message) noexcept {
    for (std::size_t line = 0; line < message.size();) {
        const std::size_t end = message.find_first_of("\r\n", line);
        if (end == std::string_view::npos) break;
        const std::string_view text = message.substr(line, end - line);
        const std::size_t next = end + (message.substr(end).starts_with("\r\n") ? 2 : 1);
        if (text.find_first_not_of(" \t") == std::string_view::npos) return next;
        if (!isHeaderLine(text, line > 0)) return line;
        line = next;
    }
    return 0;
}

std::vector<BodyGroup> groupByBody(const std::vector<MessageBytes>& copies) {
    std::vector<BodyGroup> groups;
    for (std::size_t copy = 0; copy < copies.size(); ++copy) {
        const auto group = std::ranges::find_if(groups, [&](const BodyGroup& known) {
            return copies[known.largest].body() == copies[copy].body();
        });
        if (group == groups.end()) {
            groups.push_back({.copies = {copy}, .largest = copy});
            continue;
        }
        group->copies.push_back(copy);
        if (copies[copy].bytes.size() > copies[group->largest].bytes.size()) group->largest = copy;
    }
    return groups;
}

} // namespace corvane::archive
