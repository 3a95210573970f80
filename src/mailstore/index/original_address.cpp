#include "mailstore/index/original_address.h"

#include <fmt/format.h>

#include "text/trim.h"

namespace corvane::mailstore {

namespace {

constexpr std::string_view plainSigns = "@._-+=~";

bool isPlain(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           plainSigns.find(byte) != std::string_view::npos;
}

} // namespace

std::optional<std::string> originalAddress(std::string_view messageIDHeader) {
    const std::string_view identifier = text::trimCharacters(messageIDHeader, "<> \r\n\t");
    if (identifier.empty()) return std::nullopt;
    std::string address = "message://%3C";
    for (const char byte : identifier) {
        if (isPlain(byte))
            address += byte;
        else
            address += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    }
    return address + "%3E";
}

} // namespace corvane::mailstore
