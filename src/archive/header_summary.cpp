#include "archive/header_summary.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "mime/header_decoding.h"
#include "mime/mail_date.h"
#include "mime/message_identifiers.h"
#include "records/name_and_address.h"
#include "records/texts/missing_fields.h"
#include "text/case.h"
#include "text/charsets/charset.h"
#include "text/charsets/encoding.h"
#include "text/charsets/named_charset.h"
#include "text/trim.h"

namespace corvane::archive {

namespace {

constexpr std::size_t npos = std::string_view::npos;

// A word has at most 75 characters by the standard; programs make longer ones.
constexpr std::size_t longestPayload = 8192;
constexpr std::size_t longestCharset = 100;

struct Word {
    std::string charset; // lower case, without a language (RFC 2231)
    std::string bytes;
    std::size_t end = 0; // in the value
};

std::string decodedQ(std::string_view payload) {
    std::string bytes;
    for (std::size_t i = 0; i < payload.size(); ++i) {
        const auto byte = payload[i] == '=' ? text::hexadecimalByte(payload.substr(i + 1, 2)) : std::nullopt;
        if (byte) {
            bytes += static_cast<char>(*byte);
            i += 2;
        } else {
            bytes += payload[i] == '_' ? ' ' : payload[i];
        }
    }
    return bytes;
}

std::string decodedBytes(std::string_view bytes, std::string_view charset) {
    const bool isCommon = charset.starts_with("utf-8") || charset.starts_with("gb");
    auto decoded = isCommon ? std::nullopt : text::fromNamedCharset(bytes, charset);
    if (!decoded) decoded = mime::decodeData(bytes, charset);
    return decoded ? std::move(*decoded) : text::repairedUtf8(bytes);
}

// "=?charset?B?payload?=" at `start`, where "=?" is known to stand.
std::optional<Word> wordAt(std::string_view value, std::size_t start) {
    const std::size_t charsetEnd = value.substr(0, start + longestCharset).find('?', start + 2);
    if (charsetEnd == npos || charsetEnd + 2 >= value.size() || value[charsetEnd + 2] != '?')
        return std::nullopt;
    const std::size_t payloadStart = charsetEnd + 3;
    const std::size_t length = value.substr(payloadStart, longestPayload).find("?=");
    if (length == npos) return std::nullopt;
    const std::size_t payloadEnd = payloadStart + length;
    const std::string_view payload = value.substr(payloadStart, length);
    Word word{text::asciiLowercased(value.substr(start + 2, charsetEnd - start - 2)), {}, payloadEnd + 2};
    word.charset.resize(std::min(word.charset.find('*'), word.charset.size()));
    switch (value[charsetEnd + 1]) {
    case 'Q':
    case 'q':
        word.bytes = decodedQ(payload);
        return word;
    case 'B':
    case 'b': {
        std::string digits(payload);
        digits.append((4 - digits.size() % 4) % 4, '='); // often left out
        auto bytes = text::base64Decoded(digits);
        if (!bytes) return std::nullopt;
        word.bytes = std::move(*bytes);
        return word;
    }
    default:
        return std::nullopt;
    }
}

std::string withoutQuotes(std::string_view name) {
    name = text::trimWhitespaceAndNewlines(name);
    if (name.size() < 2 || name.front() != '"' || name.back() != '"') return std::string(name);
    std::string plain;
    for (std::size_t i = 1; i + 1 < name.size(); ++i) {
        if (name[i] == '\\' && i + 2 < name.size()) ++i;
        plain += name[i];
    }
    return plain;
}

std::string shownAddress(std::string_view address) {
    const auto parts = nameAndAddress(address);
    if (!parts) return std::string(text::trimWhitespaceAndNewlines(address));
    return mime::formattedAddress(decodedWords(withoutQuotes(parts->name)), parts->address);
}

// The raw fields; bytes that are no UTF-8 are read as GB 18030 and else as Latin 1, as mail without a charset
// mostly is.
mime::HeaderMap fieldsOf(std::string_view start) {
    // Before the copy: a header is short and a body may be long.
    std::string header(start.substr(0, std::min(start.find("\n\n"), start.find("\n\r\n"))));
    if (header.find('\n') == std::string::npos) {
        std::ranges::replace(header, '\r', '\n');
    } else {
        std::erase(header, '\r');
    }
    header.resize(std::min(header.find("\n\n"), header.size()));
    if (!text::isValidUtf8(header)) {
        auto decoded = text::fromGb18030(header);
        header = decoded ? std::move(*decoded) : text::fromLatin1(header);
    }
    return mime::headerFields(header);
}

std::string_view fieldOf(const mime::HeaderMap& fields, std::string_view name) {
    const auto field = fields.find(name);
    return field == fields.end() ? std::string_view() : std::string_view(field->second);
}

std::optional<std::vector<SharedText>> referencesOf(const mime::HeaderMap& fields) {
    const auto references = mime::normalizedReferencedMessageIdentifiers(fieldOf(fields, "references"),
                                                                         fieldOf(fields, "in-reply-to"));
    if (!references) return std::nullopt;
    return std::vector<SharedText>(references->begin(), references->end());
}

} // namespace

std::string decodedWords(std::string_view value) {
    std::string result;
    std::string bytes; // of neighbouring words, not decoded yet
    std::string charset;
    std::size_t position = 0; // up to here the value is in the result or in the bytes
    const auto flush = [&] {
        if (bytes.empty()) return;
        result += decodedBytes(bytes, charset);
        bytes.clear();
    };
    for (std::size_t next = value.find("=?"); next != npos;) {
        auto word = wordAt(value, next);
        if (!word) {
            next = value.find("=?", next + 2);
            continue;
        }
        const std::string_view between = value.substr(position, next - position);
        const bool isNeighbour = !bytes.empty() && text::trimWhitespaceAndNewlines(between).empty();
        if (!isNeighbour || word->charset != charset) flush();
        if (!isNeighbour) result += between;
        charset = std::move(word->charset);
        bytes += word->bytes;
        position = word->end;
        next = value.find("=?", position);
    }
    flush();
    return result += value.substr(position);
}

std::string shownAddresses(std::string_view value) {
    std::string shown;
    bool isQuoted = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= value.size(); ++i) {
        const bool isEnd = i == value.size();
        if (i + 1 < value.size() && value[i] == '\\' && isQuoted) {
            ++i;
            continue;
        }
        if (!isEnd && value[i] == '"') isQuoted = !isQuoted;
        if (!isEnd && (value[i] != ',' || isQuoted)) continue;
        const std::string address = shownAddress(value.substr(start, std::min(i, value.size()) - start));
        if (!address.empty()) shown += (shown.empty() ? "" : ", ") + address;
        start = i + 1;
    }
    return shown;
}

std::optional<HeaderSummary> headerSummary(std::string_view start) {
    const mime::HeaderMap fields = fieldsOf(start);
    const auto isThere = [&](const char* name) { return !fieldOf(fields, name).empty(); };
    if (!isThere("message-id") && !isThere("from") && !isThere("to") && !isThere("subject") &&
        !isThere("date"))
        return std::nullopt;
    HeaderSummary summary;
    if (auto identifier = mime::normalizedMessageIdentifier(fieldOf(fields, "message-id")))
        summary.messageIdentifier = SharedText(*identifier);
    summary.referencedMessageIdentifiers = referencesOf(fields);
    const std::string subject = decodedWords(fieldOf(fields, "subject"));
    summary.subject = subject.empty() ? SharedText(missingSubject) : SharedText(subject);
    const std::string sender = shownAddresses(fieldOf(fields, "from"));
    summary.sender = sender.empty() ? SharedText(missingSender) : SharedText(sender);
    const std::string to = shownAddresses(fieldOf(fields, "to"));
    const std::string cc = shownAddresses(fieldOf(fields, "cc"));
    summary.recipients = to.empty() || cc.empty() ? to + cc : to + ", " + cc;
    if (isThere("cc")) summary.ccRecipients = SharedText(mime::decodeHeaderValue(fieldOf(fields, "cc")));
    if (isThere("date")) summary.date = mime::parseMailDate(fieldOf(fields, "date"));
    return summary;
}

} // namespace corvane::archive
