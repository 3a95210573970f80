// Names of attachments, however they reach us, and what follows from them. Pure functions, any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::mime {

// The readable name: trimmed, RFC 2231 and RFC 2047 decoded, without a content identifier in front and
// without blanks around its dots. May be empty. It may still hold anything a file system doesn't take.
std::string cleanAttachmentName(std::string_view name);

// A short label in the user's language by the extension of the name, which is not always a MIME type.
// `contentType` is empty when unknown.
std::string mimeTypeGuess(std::string_view name, std::string_view contentType);

// Whether it names a picture, by the extension. A picture isn't reported as an attachment from its name
// alone.
bool hasImageExtension(std::string_view name);

// Whether a message's text has any mark of an attachment.
bool mayContainEmbeddedAttachment(std::string_view mimeText);

// Bytes from which a stored picture counts as an attachment: smaller ones are signatures and inline logos.
inline constexpr std::int64_t smallestImageAttachmentBytes = 500'000;

// Names that reached the index joined by "^_", the spelling of U+001F, taken apart; the name as it is where a
// piece doesn't look like a file name.
std::vector<std::string> splitCaretJoinedName(std::string_view name);

} // namespace corvane::mime
