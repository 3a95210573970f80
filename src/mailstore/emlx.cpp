#include "mailstore/emlx.h"

#include <fmt/format.h>

#include "platform/directory.h"
#include "text/charset.h"

namespace corvane::mailstore {

std::string readMessagePrefix(const std::string& path, std::int64_t byteLimit) {
    std::string reason;
    auto content = platform::readFilePrefix(path, byteLimit, &reason);
    if (!content) throw MessageFileError(fmt::format("{}: {}", path, reason));
    return std::move(*content);
}

std::string decodeEmlx(std::string_view data) {
    const std::size_t lineFeed = data.find('\n');
    const std::string_view message = lineFeed == std::string_view::npos ? data : data.substr(lineFeed + 1);
    return text::isValidUtf8(data) ? std::string(message) : text::fromLatin1(message);
}

} // namespace corvane::mailstore
