#include "mime/header_decoding.h"

#include <algorithm>

#include "text/case.h"
#include "text/charsets/charset.h"
#include "text/charsets/encoding.h"
#include "text/charsets/utf8_step.h"
#include "text/collation.h"
#include "text/graphemes.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

constexpr std::size_t decodedHeaderLimit = 65536;

constexpr std::size_t npos = std::string_view::npos;

class HeaderLines {
  public:
    void add(std::string_view line) {
        if (line.empty()) return;
        if (line.front() == ' ' || line.front() == '\t') {
            if (current_ == nullptr) return;
            current_->append(" ").append(text::trimWhitespaceAndNewlines(line));
            return;
        }
        const std::size_t colon = line.find(':');
        if (colon == npos) return;
        current_ = &fields_[text::lowercased(line.substr(0, colon))];
        *current_ = text::trimWhitespaceAndNewlines(line.substr(colon + 1));
    }

    HeaderMap take() { return std::move(fields_); }

  private:
    HeaderMap fields_;
    std::string* current_ = nullptr;
};

struct EncodedWord {
    std::string_view charset;
    std::string_view payload;
    bool isBase64 = false;
    std::size_t end = 0;
};

// "=?charset?B?payload?=" at `start`, where "=?" is known to stand.
std::optional<EncodedWord> encodedWordAt(std::string_view value, std::size_t start) {
    const std::size_t charsetStart = start + 2;
    const std::size_t charsetEnd = value.find('?', charsetStart);
    if (charsetEnd == npos || charsetEnd == charsetStart || charsetEnd + 2 >= value.size())
        return std::nullopt;
    const char encoding = value[charsetEnd + 1];
    if (std::string_view("BQbq").find(encoding) == npos || value[charsetEnd + 2] != '?') return std::nullopt;
    const std::size_t payloadStart = charsetEnd + 3;
    const std::size_t payloadEnd = value.find('?', payloadStart);
    if (payloadEnd == npos || payloadEnd == payloadStart) return std::nullopt;
    if (payloadEnd + 1 >= value.size() || value[payloadEnd + 1] != '=') return std::nullopt;
    return EncodedWord{.charset = value.substr(charsetStart, charsetEnd - charsetStart),
                       .payload = value.substr(payloadStart, payloadEnd - payloadStart),
                       .isBase64 = encoding == 'B' || encoding == 'b',
                       .end = payloadEnd + 2};
}

std::optional<std::string> decodedWord(const EncodedWord& word) {
    const std::string charset = text::lowercased(word.charset);
    if (!word.isBase64) return decodeQuotedPrintableWord(word.payload, charset);
    const auto bytes = text::base64Decoded(word.payload);
    return bytes ? decodeData(*bytes, charset) : std::nullopt;
}

std::string withUnixLineEnds(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        result += text[i];
    }
    return result;
}

} // namespace

HeaderMap headerFields(std::string_view headerBlock) {
    HeaderLines lines;
    std::size_t start = 0;
    while (start <= headerBlock.size()) {
        const std::size_t end = std::min(headerBlock.find_first_of("\r\n", start), headerBlock.size());
        lines.add(headerBlock.substr(start, end - start));
        start = end + 1;
    }
    return lines.take();
}

HeaderMap headerText(std::string_view messageText) {
    return headerFields(messageText.substr(0, messageText.find("\n\n")));
}

std::optional<std::string> decodedHeaderField(std::string_view name, std::string_view rawEmail) {
    const std::string start = text::repairedUtf8(rawEmail.substr(0, decodedHeaderLimit));
    const HeaderMap fields = headerText(withUnixLineEnds(start));
    const auto field = fields.find(text::lowercased(name));
    if (field == fields.end()) return std::nullopt;
    return decodeHeaderValue(field->second);
}

std::string decodeHeaderValue(std::string_view value) {
    std::size_t next = value.find("=?");
    if (next == npos) return std::string(value);
    std::string result;
    result.reserve(value.size());
    std::size_t copied = 0;
    while (next != npos) {
        const auto word = encodedWordAt(value, next);
        if (const auto decoded = word ? decodedWord(*word) : std::nullopt) {
            result.append(value, copied, next - copied).append(*decoded);
            copied = word->end;
        }
        next = value.find("=?", word ? word->end : next + 1);
    }
    result.append(value, copied);
    std::ranges::replace(result, '_', ' ');
    return result;
}

std::optional<std::string> decodeQuotedPrintableWord(std::string_view payload, std::string_view charset) {
    std::string bytes;
    bytes.reserve(payload.size());
    for (std::size_t i = 0; i < payload.size(); ++i) {
        const bool isEscape = payload[i] == '=' && i + 2 < payload.size();
        const auto byte = isEscape ? text::hexadecimalByte(payload.substr(i + 1, 2)) : std::nullopt;
        bytes += byte ? static_cast<char>(*byte) : payload[i];
        if (byte) i += 2;
    }
    return decodeData(bytes, charset);
}

std::optional<std::string> decodeData(std::string_view bytes, std::string_view charset) {
    const auto utf8 = [&]() -> std::optional<std::string> {
        if (!text::isValidUtf8(bytes)) return std::nullopt;
        return std::string(bytes);
    };
    if (charset.find("utf-8") != npos) return utf8();
    if (charset.find("gb") != npos) return text::fromGb18030(bytes);
    if (charset.find("iso-8859-1") != npos) return text::fromLatin1(bytes);
    if (auto decoded = utf8()) return decoded;
    return text::fromLatin1(bytes);
}

bool looksLikeMojibake(std::string_view text) {
    static constexpr std::string_view letters = "ÄÃÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß¼½¾£»º";
    // Characters are compared whole: a letter built by a combining mark counts, one with a further mark
    // doesn't.
    const std::string composed = text::canonicallyComposed(text);
    const std::string_view all = composed;
    int count = 0;
    for (std::size_t i = 0; i < all.size() && count <= 3; i += text::characterLength(all[i])) {
        if (text::characterLength(all[i]) != 2 || letters.find(all.substr(i, 2)) == npos) continue;
        const std::size_t after = i + 2;
        const bool endsHere = after >= all.size() || text::characterLength(all[after]) == 1 ||
                              text::graphemeCount(all.substr(i, 2 + text::characterLength(all[after]))) == 2;
        if (endsHere) ++count;
    }
    return count > 3;
}

std::optional<std::string> latin1Data(std::string_view text) {
    return text::toLatin1(text);
}

} // namespace corvane::mime
