#include "mime/body/body_line_rules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

#include "text/case.h"
#include "text/charsets/ascii.h"
#include "text/charsets/utf8_step.h"
#include "text/graphemes.h"
#include "text/regex.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

constexpr std::size_t shortestRule = 10;
constexpr std::size_t longestContactLine = 60;
constexpr std::size_t longestAttribution = 160;

// Their Latin letters are in lower case, and come from no other character by lower-casing.
constexpr auto historyHeads = std::to_array<std::string_view>(
    {"发件人:", "发件人：", "from:", "原始邮件", "-----原始邮件", "-----original message", "----- forwarded",
     "------ forwarded", "begin forwarded message", "在 "});
constexpr auto contactLabels = std::to_array<std::string_view>(
    {"电话", "手机", "传真", "邮箱", "地址", "邮编", "网址", "postcode", "tel", "mobile", "mob.", "fax",
     "phone", "email", "e-mail", "add:", "addr:", "address"});
constexpr auto recipientLabels = std::to_array<std::string_view>(
    {"收件人:", "收件人：", "抄送:", "抄送：", "密件抄送:", "密件抄送：", "to:", "cc:", "bcc:"});
constexpr auto bullets = std::to_array<std::string_view>({"• ", "* ", "· ", "▪ ", "▸ ", "- ", "— "});

bool startsWithLower(std::string_view text, std::string_view lowerPrefix) {
    return text.size() >= lowerPrefix.size() &&
           std::ranges::equal(text.substr(0, lowerPrefix.size()), lowerPrefix, {}, text::asciiLower);
}

template <std::size_t Count>
bool holdsAny(std::string_view text, const std::array<std::string_view, Count>& parts) {
    return std::ranges::any_of(
        parts, [&](std::string_view part) { return text.find(part) != std::string_view::npos; });
}

std::string_view trimmedAtEnd(std::string_view text) {
    const std::string_view trimmed = text::trimWhitespaceAndNewlines(text);
    return text.substr(0, static_cast<std::size_t>(trimmed.data() - text.data()) + trimmed.size());
}

bool endsAsAttribution(std::string_view line) {
    const std::string_view text = trimmedAtEnd(line);
    return text.ends_with("写道") || text.ends_with("写道:") || text.ends_with("写道：");
}

// What "." stands for in a regular expression.
bool endsLine(char32_t character) {
    return (character >= '\n' && character <= '\r') || character == 0x85 || character == 0x2028 ||
           character == 0x2029;
}

bool fitsInAttribution(std::string_view lowered) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < lowered.size(); ++count) {
        const auto character = text::nextScalar(lowered, at);
        if (count == longestAttribution || (character >= 0 && endsLine(static_cast<char32_t>(character))))
            return false;
    }
    return true;
}

// "On Monday Anna wrote:", with at most 160 characters between both words.
bool isEnglishAttribution(std::string_view line) {
    constexpr std::string_view head = "on ";
    constexpr std::string_view tail = "wrote";
    if (!startsWithLower(line, head)) return false;
    std::string_view text = trimmedAtEnd(line);
    if (text.ends_with(':')) text.remove_suffix(1);
    if (text.size() < head.size() + tail.size()) return false;
    if (!startsWithLower(text.substr(text.size() - tail.size()), tail)) return false;
    text.remove_prefix(head.size());
    text.remove_suffix(tail.size());
    // No character takes more than four bytes.
    return text.size() <= 4 * longestAttribution && fitsInAttribution(text::lowercased(text));
}

bool isRuleOfUnderscores(std::string_view line) {
    return line.size() >= shortestRule && line.find_first_not_of('_') == std::string_view::npos;
}

bool isMobileNumber(std::string_view line) {
    static const text::Regex pattern(R"(^1[3-9]\d{9}$)");
    return line.size() > 1 && line[0] == '1' && line[1] >= '3' && line[1] <= '9' &&
           pattern.firstMatch(line).has_value();
}

bool hasAtMost(std::string_view text, std::size_t characters) {
    return text.size() <= characters || text::graphemePrefix(text, characters).size() == text.size();
}

} // namespace

bool isQuoteBoundary(std::string_view line) {
    const std::string_view text = text::trimBlanks(line);
    if (text.empty()) return false;
    if (text.starts_with('>') || isRuleOfUnderscores(text)) return true;
    const auto* const head =
        std::ranges::find_if(historyHeads, [&](auto prefix) { return startsWithLower(text, prefix); });
    if (head != historyHeads.end())
        return *head != historyHeads.back() || text.find("写道") != std::string_view::npos;
    return endsAsAttribution(text) || isEnglishAttribution(text);
}

bool isDisclaimer(std::string_view line) {
    static constexpr auto subjects =
        std::to_array<std::string_view>({"本邮件", "本电子邮件", "本通信", "本信息"});
    static constexpr auto secrets = std::to_array<std::string_view>({"保密", "机密", "仅供", "免责", "删除"});
    static constexpr auto titles = std::to_array<std::string_view>({"免责声明", "保密提示"});
    static constexpr auto english = std::to_array<std::string_view>({"intended", "this e", "notice"});
    if (line.empty()) return false;
    if (holdsAny(line, subjects) && holdsAny(line, secrets)) return true;
    if (holdsAny(line, titles) || line.starts_with("声明：") || line.starts_with("声明:")) return true;
    // The words hold no letter that another character becomes in lower case.
    const std::string lower = text::asciiLowercased(line);
    if (lower.starts_with("disclaimer")) return true;
    return lower.find("confidential") != std::string::npos && holdsAny(lower, english);
}

bool isLikelyBodyLine(std::string_view line) {
    static const text::Regex numbered(R"(^\d{1,4}[A-Za-z一-鿿]|^[\(（]?\d{1,4}[\)）\.、])");
    if (line.empty()) return false;
    return std::ranges::any_of(bullets, [&](auto bullet) { return line.starts_with(bullet); }) ||
           numbered.firstMatch(line).has_value();
}

bool isContactLine(std::string_view line) {
    const std::string_view text = text::trimBlanks(line);
    const bool hasLabel =
        std::ranges::any_of(contactLabels, [&](auto label) { return startsWithLower(text, label); });
    return (hasLabel && hasAtMost(text, longestContactLine)) || isMobileNumber(text);
}

std::string_view recipientLabel(std::string_view line) {
    const std::string_view text = text::trimBlanks(line);
    const auto* const label =
        std::ranges::find_if(recipientLabels, [&](auto prefix) { return startsWithLower(text, prefix); });
    return label == recipientLabels.end() ? std::string_view() : text.substr(0, label->size());
}

} // namespace corvane::mime
