// Header lines of mail turned into clean text: field maps, RFC 2047 encoded words, charsets. Pure functions
// on bytes and UTF-8 text, linear in their input, safe on any thread.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::mime {

// Lower-cased field name to unfolded value. Of a repeated field the last one stands.
using HeaderMap = std::map<std::string, std::string, std::less<>>;

// The header block of a message text: what stands before the first "\n\n". A text with CRLF line ends has no
// such place and counts as a header block as a whole; `decodedHeaderField` normalizes line ends first.
HeaderMap headerText(std::string_view messageText);

// The map of a text that is only a header block.
HeaderMap headerFields(std::string_view headerBlock);

// A decoded field of a raw message; nullopt when it isn't in the first 65536 bytes.
std::optional<std::string> decodedHeaderField(std::string_view name, std::string_view rawEmail);

// Decodes the encoded words (RFC 2047) of a value. A word that can't be decoded stays as it is, and so does
// the white space between two words. In a value that contains "=?" every "_" becomes a blank, wherever it
// stands.
std::string decodeHeaderValue(std::string_view value);

// The "Q" encoding without its rule for "_", which decodeHeaderValue applies to the whole value. Nullopt when
// the bytes are invalid in the charset.
std::optional<std::string> decodeQuotedPrintableWord(std::string_view payload, std::string_view charset);

// `charset` is lower-case and matched by what it contains: "utf-8" and "gb" (GB 18030) return nullopt for
// invalid bytes, "iso-8859-1" is ISO Latin 1, anything else UTF-8 or else ISO Latin 1.
std::optional<std::string> decodeData(std::string_view bytes, std::string_view charset);

// More than three of the letters that UTF-8 or GBK bytes turn into when they are read as ISO Latin 1.
bool looksLikeMojibake(std::string_view text);

// The bytes of a text that was read as ISO Latin 1; nullopt when it holds a larger scalar.
std::optional<std::string> latin1Data(std::string_view text);

} // namespace corvane::mime
