#include "mime/mime_walk.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "text/case.h"
#include "text/charsets/encoding.h"
#include "text/regex.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

constexpr int deepestPart = 3;

struct HeaderAndBody {
    std::string_view header;
    std::string_view body;
};

std::optional<HeaderAndBody> cutAtEmptyLine(std::string_view message) {
    for (const std::string_view separator : {"\r\n\r\n", "\n\n"}) {
        const std::size_t end = message.find(separator);
        if (end != std::string_view::npos)
            return HeaderAndBody{message.substr(0, end), message.substr(end + separator.size())};
    }
    return std::nullopt;
}

std::string_view fieldOr(const HeaderMap& header, std::string_view name, std::string_view missing) {
    const auto field = header.find(name);
    return field == header.end() ? missing : std::string_view(field->second);
}

text::Regex parameterPattern(std::string_view name) {
    return text::Regex(
        fmt::format(R"re((?i)(?:^|;)\s*{}\s*=\s*(?:"([^"]+)"|([^;\r\n]+)))re", text::Regex::escaped(name)));
}

std::optional<std::string> parameterBy(const text::Regex& pattern, std::string_view field) {
    const auto match = pattern.firstMatch(field);
    if (!match) return std::nullopt;
    const std::string_view value = match->group(match->groups[1] ? 1 : 2, field);
    return std::string(text::trimWhitespaceAndNewlines(value));
}

std::vector<PreviewCandidate> candidatesOfParts(const std::vector<std::string>& parts, int depth) {
    std::vector<PreviewCandidate> candidates;
    for (const std::string& part : parts) {
        auto inside = previewCandidates(part, depth);
        std::ranges::move(inside, std::back_inserter(candidates));
    }
    return candidates;
}

std::string withoutWhitespace(std::string_view text) {
    static const text::Regex rareSpaces(R"re([\p{Z}\x{85}])re");
    std::string result;
    result.reserve(text.size());
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of(" \t\n\v\f\r", start), text.size());
        result.append(text.substr(start, end - start));
        start = end + 1;
    }
    const bool isAscii = std::ranges::none_of(result, [](char byte) { return (byte & 0x80) != 0; });
    return isAscii ? result : rareSpaces.replacingAll(result, "");
}

} // namespace

std::vector<PreviewCandidate> previewCandidates(std::string_view messageText, int depth) {
    static const text::Regex boundaryPattern = parameterPattern("boundary");
    if (depth > deepestPart) return {};
    const auto message = cutAtEmptyLine(messageText);
    if (!message) return {};
    const HeaderMap header = headerFields(message->header);
    const std::string_view contentType = fieldOr(header, "content-type", "text/plain");
    const std::string type = text::lowercased(mimeHeaderValue(contentType));
    if (type.starts_with("multipart/")) {
        const auto boundary = parameterBy(boundaryPattern, contentType);
        return boundary ? candidatesOfParts(splitMIMEParts(message->body, *boundary), depth + 1)
                        : std::vector<PreviewCandidate>();
    }
    if (type.starts_with("message/"))
        return previewCandidates(decodedMIMEBody(message->body, header), depth + 1);
    const std::string disposition =
        text::lowercased(mimeHeaderValue(fieldOr(header, "content-disposition", "")));
    const bool isHTML = type.starts_with("text/html");
    if ((!isHTML && !type.starts_with("text/plain")) || disposition.find("attachment") != std::string::npos)
        return {};
    return {{.body = decodedMIMEBody(message->body, header), .isHTML = isHTML}};
}

std::string mimeHeaderValue(std::string_view field) {
    return std::string(text::trimWhitespaceAndNewlines(field.substr(0, field.find(';'))));
}

std::optional<std::string> mimeHeaderParameter(std::string_view name, std::string_view field) {
    return parameterBy(parameterPattern(name), field);
}

std::vector<std::string> splitMIMEParts(std::string_view text, std::string_view boundary) {
    const std::string unixText = text::replacingAll(text, "\r\n", "\n");
    const std::string marker = fmt::format("--{}", boundary);
    const std::string closing = marker + "--";
    std::vector<std::string> parts;
    std::optional<std::size_t> partStart;
    const auto endPart = [&](std::size_t end) {
        if (!partStart) return;
        const auto part =
            text::trimWhitespaceAndNewlines(std::string_view(unixText).substr(*partStart, end - *partStart));
        if (!part.empty()) parts.emplace_back(part);
    };
    for (std::size_t start = 0; start <= unixText.size();) {
        const std::size_t end = std::min(unixText.find('\n', start), unixText.size());
        const std::string_view line = std::string_view(unixText).substr(start, end - start);
        if (line == closing || line == marker) endPart(start);
        if (line == closing) return parts;
        if (line == marker) partStart = std::min(end + 1, unixText.size());
        start = end + 1;
    }
    endPart(unixText.size());
    return parts;
}

std::string decodeQuotedPrintableData(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view behind = text.substr(i + 1, 2);
        if (text[i] != '=') {
            bytes += text[i];
        } else if (behind.starts_with('\n')) {
            i += 1;
        } else if (behind == "\r\n") {
            i += 2;
        } else if (const auto byte = text::hexadecimalByte(behind)) {
            bytes += static_cast<char>(*byte);
            i += 2;
        } else {
            bytes += '=';
        }
    }
    return bytes;
}

std::string decodedMIMEBody(std::string_view body, const HeaderMap& header) {
    static const text::Regex charsetPattern = parameterPattern("charset");
    const std::string encoding =
        text::lowercased(text::trimWhitespaceAndNewlines(fieldOr(header, "content-transfer-encoding", "")));
    const std::string charset =
        parameterBy(charsetPattern, fieldOr(header, "content-type", "")).value_or("utf-8");
    std::optional<std::string> decoded;
    if (encoding == "base64") {
        const auto bytes = text::base64Decoded(withoutWhitespace(body));
        if (bytes) decoded = decodeData(*bytes, charset);
    } else if (encoding == "quoted-printable") {
        decoded = decodeData(decodeQuotedPrintableData(body), charset);
    } else {
        decoded = decodeUnencodedBody(body, charset);
    }
    return decoded ? std::move(*decoded) : std::string(body);
}

std::optional<std::string> decodeUnencodedBody(std::string_view body, std::string_view charset) {
    const std::string lowered = text::lowercased(charset);
    if (lowered.find("gb") == std::string::npos) return std::nullopt;
    const auto bytes = latin1Data(body);
    return bytes ? decodeData(*bytes, lowered) : std::nullopt;
}

} // namespace corvane::mime
