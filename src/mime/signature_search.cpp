#include "mime/signature_search.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "text/graphemes.h"
#include "text/regex.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

constexpr std::size_t fewestCharactersBefore = 12;

struct LineEnd {
    std::size_t start;
    std::size_t length; // 0 at the end of the text
};

// The line ends of regular expressions: U+000A to U+000D, "\r\n", U+0085, U+2028 and U+2029.
LineEnd nextLineEnd(std::string_view text, std::size_t from) {
    while (true) {
        const std::size_t found = text.find_first_of("\n\v\f\r\xC2\xE2", from);
        if (found == std::string_view::npos) return {text.size(), 0};
        const std::string_view rest = text.substr(found);
        if (rest.starts_with("\r\n") || rest.starts_with("\u0085")) return {found, 2};
        if (rest.starts_with("\u2028") || rest.starts_with("\u2029")) return {found, 3};
        if (static_cast<unsigned char>(rest.front()) < 0x80) return {found, 1};
        from = found + 1;
    }
}

// Every line that holds something, trimmed, one "\n" between them. The given patterns begin with white space
// that may run over any number of lines: on the text itself they would walk through a long gap once from each
// of its lines.
class FilledLines {
  public:
    explicit FilledLines(std::string_view text) {
        joined_.reserve(text.size());
        std::size_t gapStart = 0;
        for (std::size_t start = 0; start < text.size();) {
            const LineEnd end = nextLineEnd(text, start);
            const std::string_view line =
                text::trimWhitespaceAndNewlines(text.substr(start, end.start - start));
            start = end.start + end.length;
            if (line.empty()) continue;
            lines_.push_back({.joinedStart = joined_.size(), .originalStart = gapStart});
            joined_.append(line).append("\n");
            gapStart = start;
        }
    }

    [[nodiscard]] std::string_view text() const { return joined_; }

    // Where a line of the joined text begins in the original one, with the gap above it.
    [[nodiscard]] std::size_t originalStart(std::size_t joinedStart) const {
        return std::ranges::lower_bound(lines_, joinedStart, {}, &Line::joinedStart)->originalStart;
    }

    [[nodiscard]] bool hasEnoughBefore(std::size_t joinedStart) const {
        std::string before = joined_.substr(0, joinedStart);
        std::erase(before, '\n');
        return text::graphemePrefix(before, fewestCharactersBefore - 1).size() < before.size();
    }

  private:
    struct Line {
        std::size_t joinedStart;
        std::size_t originalStart;
    };

    std::string joined_;
    std::vector<Line> lines_;
};

const std::array<text::Regex, 4>& patterns() {
    static const std::array<text::Regex, 4> compiled = {
        text::Regex(R"re((?im)^--\s*$)re"),
        text::Regex(R"re((?im)^(best regards|kind regards|regards|thanks|thank you|sincerely|cheers|br))re"
                    R"re([,.:;!！。；：，\s]*$)re"),
        text::Regex(
            R"re((?im)^(此致|敬上|谢谢|祝好|顺祝商祺|发自我的|从我的.+发送|免责声明)[,.:;!！。；：，\s]*$)re"),
        text::Regex(R"re((?im)^(sent from my|confidentiality notice|this e-mail and any attachments|)re"
                    R"re(this email and any attachments).*$)re")};
    return compiled;
}

} // namespace

std::size_t signatureStart(std::string_view text) {
    const FilledLines lines(text);
    std::size_t earliest = std::string_view::npos;
    for (const text::Regex& pattern : patterns()) {
        const auto match = pattern.firstMatch(lines.text());
        if (!match || match->start() >= earliest || !lines.hasEnoughBefore(match->start())) continue;
        earliest = match->start();
    }
    return earliest == std::string_view::npos ? earliest : lines.originalStart(earliest);
}

} // namespace corvane::mime
