#include "mime/emlx.h"

#include <fmt/format.h>

#include "platform/files/directory.h"
#include "text/charsets/charset.h"
#include "text/charsets/utf8_step.h"

namespace corvane::mime {

std::string readMessagePrefix(const std::string& path, std::int64_t byteLimit) {
    std::string reason;
    auto content = platform::readFilePrefix(path, byteLimit, &reason);
    if (!content) throw MessageFileError(fmt::format("{}: {}", path, reason));
    // With a character cut at its end, all of a text that is UTF-8 would be read as ISO Latin 1.
    if (static_cast<std::int64_t>(content->size()) == byteLimit)
        content->resize(text::withoutCutCharacter(*content).size());
    return std::move(*content);
}

std::string decodeEmlx(std::string_view data) {
    const std::size_t lineFeed = data.find('\n');
    const std::string_view message = lineFeed == std::string_view::npos ? data : data.substr(lineFeed + 1);
    return text::isValidUtf8(data) ? std::string(message) : text::fromLatin1(message);
}

} // namespace corvane::mime
