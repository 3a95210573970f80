#include "mime/emlx.h"

#include <algorithm>

#include <fmt/format.h>

#include "platform/directory.h"
#include "text/charset.h"

namespace corvane::mime {

namespace {

// The bytes at the end that begin a UTF-8 character and don't complete it: with them, all of a text that is
// UTF-8 would be read as ISO Latin 1.
std::size_t cutCharacterLength(std::string_view bytes) {
    for (std::size_t length = 1; length <= std::min<std::size_t>(3, bytes.size()); ++length) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - length]);
        if ((byte & 0xC0) == 0x80) continue;
        const std::size_t whole = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        return whole > length ? length : 0;
    }
    return 0;
}

} // namespace

std::string readMessagePrefix(const std::string& path, std::int64_t byteLimit) {
    std::string reason;
    auto content = platform::readFilePrefix(path, byteLimit, &reason);
    if (!content) throw MessageFileError(fmt::format("{}: {}", path, reason));
    if (static_cast<std::int64_t>(content->size()) == byteLimit)
        content->resize(content->size() - cutCharacterLength(*content));
    return std::move(*content);
}

std::string decodeEmlx(std::string_view data) {
    const std::size_t lineFeed = data.find('\n');
    const std::string_view message = lineFeed == std::string_view::npos ? data : data.substr(lineFeed + 1);
    return text::isValidUtf8(data) ? std::string(message) : text::fromLatin1(message);
}

} // namespace corvane::mime
