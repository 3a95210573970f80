#include "mime/preview_layout.h"

#include <algorithm>
#include <array>
#include <utility>

#include "mime/header_decoding.h"
#include "mime/signature_search.h"
#include "records/texts/preview_placeholders.h"
#include "text/case.h"
#include "text/graphemes.h"
#include "text/regex.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

using text::Regex;
constexpr std::size_t npos = std::string_view::npos;

// The rest of the text when the pattern matches at its very start.
std::string_view withoutStart(std::string_view text, const Regex& pattern) {
    const auto match = pattern.firstMatch(text);
    if (!match || match->start() != 0) return text;
    return text::trimWhitespaceAndNewlines(text.substr(match->length()));
}

// What "<open[\s\S]*?</close>" matches becomes a blank. That pattern itself would walk to the end of the text
// from every element that is never closed.
std::string withoutElements(const std::string& text, const Regex& open, const Regex& close) {
    std::string result;
    const auto closings = close.allMatches(text);
    auto closing = closings.begin();
    std::size_t copied = 0;
    for (const auto& opening : open.allMatches(text)) {
        if (opening.start() < copied) continue;
        const std::size_t inside = opening.start() + opening.length();
        closing =
            std::find_if(closing, closings.end(), [&](const auto& match) { return match.start() >= inside; });
        if (closing == closings.end()) break;
        result.append(text, copied, opening.start() - copied).append(" ");
        copied = closing->start() + closing->length();
    }
    return result.append(text, copied);
}

// "<[^>]+>" finds nothing behind the last ">", and would look for that from every "<" there.
std::string withoutTags(std::string_view text) {
    static const Regex tag("<[^>]+>");
    const std::size_t end = text.rfind('>') + 1; // 0 without one
    return tag.replacingAll(text.substr(0, end), " ").append(text.substr(end));
}

bool isMIMELine(std::string_view lowered) {
    static constexpr std::array<std::string_view, 5> fields = {
        "content-type:", "content-transfer-encoding:", "content-disposition:", "content-id:",
        "mime-version:"};
    if (lowered == "this is a multi-part message in mime format.") return true;
    return std::ranges::any_of(fields, [&](std::string_view field) { return lowered.starts_with(field); });
}

bool isNoiseLine(std::string_view line) {
    if (looksLikeCSSNoiseLine(line)) return true;
    if (line.starts_with("--") && line.find("=_") != npos) return true;
    // Every such line has one of these; most lines have none, and needn't be lowered.
    return line.find_first_of(":.") != npos && isMIMELine(text::lowercased(line));
}

bool hasRule(std::string_view line) {
    static const Regex rule(
        "(?i)^(body|html|table|td|p|div|span|a|img|font|\\.[A-Za-z0-9_-]+|#[A-Za-z0-9_-]+|"
        "@[A-Za-z-]+)[^{]*\\{[^}]*\\}");
    // Without both in this order there is no match, however long the pattern looks for it.
    const std::size_t brace = line.find('{');
    return brace != npos && line.find('}', brace) != npos && rule.firstMatch(line);
}

bool hasSeveralProperties(std::string_view line) {
    static constexpr std::array<std::string_view, 9> properties = {
        "font:",    "text-align:",      "vertical-align:", "background:", "overflow:",
        "display:", "text-decoration:", "padding-bottom:", "width:"};
    if (line.find(':') == npos) return false;
    const std::string lowered = text::lowercased(line);
    return std::ranges::count_if(
               properties, [&](std::string_view property) { return lowered.find(property) != npos; }) > 1;
}

} // namespace

std::string plainPreviewText(std::string_view body) {
    static const Regex styleStart("(?i)<style");
    static const Regex styleEnd("(?i)</style>");
    static const Regex scriptStart("(?i)<script");
    static const Regex scriptEnd("(?i)</script>");
    static const Regex lineBreak(R"((?i)<br\s*/?>)");
    static const Regex paragraphEnd(R"((?i)</p\s*>)");
    static const Regex dashedLine("(?m)^--.*$");
    std::string text = stripLeadingCSSNoise(body);
    text = withoutElements(text, styleStart, styleEnd);
    text = withoutElements(text, scriptStart, scriptEnd);
    text = lineBreak.replacingAll(text, "\n");
    text = paragraphEnd.replacingAll(text, "\n");
    text = htmlEntityDecoded(withoutTags(text));
    text = dashedLine.replacingAll(stripSignatureContent(text), "");
    return normalizedPreviewFormatting(text);
}

// No character that a repetition takes can begin what follows it, so none is given back: a line without "{"
// costs one look at it.
std::string stripLeadingCSSNoise(std::string_view text) {
    static const Regex rules(R"((?is)^\s*+(?:[@.#]?[A-Za-z_][^{\r\n]*+\{[^}]*+\}\s*+)++)");
    static const Regex element(
        R"((?is)^\s*+(?:body|html|table|td|p|div|span|a|img|font)[^{\r\n]*+\{[^}]*+\}\s*+)");
    const std::string_view trimmed = text::trimWhitespaceAndNewlines(text);
    return std::string(withoutStart(withoutStart(trimmed, rules), element));
}

std::string htmlEntityDecoded(std::string_view text) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 6> references = {
        {{"&nbsp;", " "}, {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}}};
    std::string result(text);
    for (const auto& [reference, character] : references) {
        if (result.find(reference) != npos) result = text::replacingAll(result, reference, character);
    }
    return result;
}

std::string stripSignatureContent(std::string_view text) {
    return std::string(text.substr(0, signatureStart(text)));
}

std::string normalizedPreviewFormatting(std::string_view text) {
    // "[ \t\f\v]+" a line, where \v is all vertical white space and "\n" the end of a line; a lone blank may
    // stay.
    static const Regex blanks(
        R"re([ \t\f\x{0B}\x{85}\x{2028}\x{2029}]{2,}|[\t\f\x{0B}\x{85}\x{2028}\x{2029}])re");
    static const Regex emptyLines("\n{3,}");
    const std::string unixText = text::replacingAll(text::replacingAll(text, "\r\n", "\n"), "\r", "\n");
    const std::string spaced = blanks.replacingAll(unixText, " ");
    std::string result;
    result.reserve(spaced.size());
    for (const std::string_view whole : text::splitText(spaced, '\n')) {
        const std::string_view line = text::trimBlanks(whole);
        if (!line.empty() && isNoiseLine(line)) continue;
        result.append(line).append("\n");
    }
    result = emptyLines.replacingAll(result, "\n\n");
    return std::string(text::trimWhitespaceAndNewlines(result));
}

bool looksLikeCSSNoiseLine(std::string_view line) {
    const std::string_view trimmed = text::trimWhitespaceAndNewlines(line);
    if (trimmed.find_first_of("{:") == npos) return false; // either test needs one of these
    if (text::graphemePrefix(trimmed, 5).size() == trimmed.size()) return false;
    return hasRule(trimmed) || hasSeveralProperties(trimmed);
}

bool previewLooksCorrupt(std::string_view preview) {
    static constexpr std::array<std::string_view, 7> leftovers = {
        "content-type:",
        "content-transfer-encoding:",
        "this is a multi-part message in mime format",
        "body{",
        ".htmlarea",
        "waveline",
        "font:10pt"};
    if (preview == lazyPreviewPlaceholder) return true;
    const std::string lowered = text::lowercased(preview);
    const auto stands = [&](std::string_view part) { return lowered.find(part) != npos; };
    return std::ranges::any_of(leftovers, stands) || looksLikeMojibake(preview);
}

} // namespace corvane::mime
