// The short text of a message for lists, from our own small walk through the message.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "records/file_url.h"

namespace corvane::mime {

// Bytes read of a message for its preview: a body behind a larger attachment has none.
inline constexpr std::int64_t previewByteLimit = 2'097'152;

// Of the message in the file as it stands. Throws MessageFileError when the file can't be read.
std::string previewTextWithoutWorker(const FileURL& file);

// Of a message as decodeEmlx returns it: at most `previewCharacters`, or the placeholder of an empty body.
// Pure.
std::string previewText(std::string_view messageText);

} // namespace corvane::mime
