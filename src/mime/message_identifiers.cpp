#include "mime/message_identifiers.h"

#include <algorithm>
#include <unordered_set>

#include <fmt/format.h>

#include "mime/header_decoding.h"
#include "text/case.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

bool isLowerCaseAscii(char character) {
    return static_cast<unsigned char>(character) < 0x80 && (character < 'A' || character > 'Z');
}

} // namespace

std::optional<std::string> normalizedMessageIdentifier(std::string_view header) {
    std::string room;
    const std::string_view identifier = normalizedMessageIdentifier(header, room);
    if (identifier.empty()) return std::nullopt;
    return std::string(identifier);
}

std::string_view normalizedMessageIdentifier(std::string_view header, std::string& room) {
    std::string decoded;
    if (header.find("=?") != std::string_view::npos) header = decoded = decodeHeaderValue(header);
    const std::string_view trimmed = text::trimCharacters(text::trimWhitespaceAndNewlines(header), "<>");
    if (decoded.empty() && std::ranges::all_of(trimmed, isLowerCaseAscii)) return trimmed;
    return room = text::lowercased(trimmed);
}

std::vector<std::string> normalizedMessageIdentifiers(std::string_view header) {
    std::vector<std::string> identifiers;
    std::unordered_set<std::string> seen;
    std::size_t position = 0;
    while (true) {
        const std::size_t open = header.find('<', position);
        const std::size_t close = open == std::string_view::npos ? open : header.find('>', open + 1);
        if (close == std::string_view::npos) break;
        auto identifier = normalizedMessageIdentifier(header.substr(open + 1, close - open - 1));
        if (identifier && seen.insert(*identifier).second) identifiers.push_back(std::move(*identifier));
        position = close + 1;
    }
    if (identifiers.empty()) {
        if (auto whole = normalizedMessageIdentifier(header)) identifiers.push_back(std::move(*whole));
    }
    return identifiers;
}

std::optional<std::vector<std::string>> normalizedReferencedMessageIdentifiers(std::string_view references,
                                                                               std::string_view inReplyTo) {
    auto identifiers = normalizedMessageIdentifiers(references);
    if (identifiers.empty()) {
        identifiers = normalizedMessageIdentifiers(inReplyTo);
        if (identifiers.size() > 1) identifiers.resize(1);
    }
    if (identifiers.empty()) return std::nullopt;
    return identifiers;
}

std::string formattedAddress(std::string_view name, std::string_view address) {
    name = text::trimWhitespaceAndNewlines(name);
    address = text::trimWhitespaceAndNewlines(address);
    if (name.empty()) return std::string(address);
    if (address.empty()) return std::string(name);
    return fmt::format("{} <{}>", name, address);
}

} // namespace corvane::mime
