#include "text/regex.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include <fmt/format.h>
#include <unicode/regex.h>

#include "text/charsets/ascii.h"
#include "text/icu_text.h"
#include "text/idle_pool.h"

namespace corvane::text {

namespace {

std::optional<RegexMatch::Range> groupRange(const icu::RegexMatcher& matcher, std::int32_t group) {
    UErrorCode status = U_ZERO_ERROR;
    const std::int64_t start = matcher.start64(group, status);
    const std::int64_t end = matcher.end64(group, status);
    requireSuccess(status, "RegexMatcher::start64");
    if (start < 0) return std::nullopt;
    return RegexMatch::Range{static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)};
}

RegexMatch currentMatch(const icu::RegexMatcher& matcher) {
    RegexMatch match;
    const std::int32_t groups = matcher.groupCount();
    match.groups.reserve(static_cast<std::size_t>(groups) + 1);
    for (std::int32_t group = 0; group <= groups; ++group) match.groups.push_back(groupRange(matcher, group));
    return match;
}

// A piece of a replacement: literal text, and the group that stands behind it, if any.
struct ReplacementPiece {
    std::string literal;
    std::optional<std::size_t> group;
};

// As in ICU, a group number takes as many digits as still name a group.
std::size_t takeGroupNumber(std::string_view& digits, std::size_t groupCount) {
    if (digits.empty() || !isAsciiDigit(digits.front()))
        throw std::invalid_argument("replacement: '$' without a group number");
    std::size_t number = 0;
    std::size_t length = 0;
    for (; length < digits.size() && isAsciiDigit(digits[length]); ++length) {
        const std::size_t longer = number * 10 + static_cast<std::size_t>(digits[length] - '0');
        if (length > 0 && longer > groupCount) break;
        number = longer;
    }
    if (number > groupCount) throw std::invalid_argument(fmt::format("replacement: no group {}", number));
    digits.remove_prefix(length);
    return number;
}

std::vector<ReplacementPiece> parseReplacement(std::string_view replacement, std::size_t groupCount) {
    std::vector<ReplacementPiece> pieces(1);
    while (!replacement.empty()) {
        const char character = replacement.front();
        replacement.remove_prefix(1);
        if (character == '$') {
            pieces.back().group = takeGroupNumber(replacement, groupCount);
            pieces.emplace_back();
        } else if (character != '\\') {
            pieces.back().literal.push_back(character);
        } else if (!replacement.empty()) {
            pieces.back().literal.push_back(replacement.front());
            replacement.remove_prefix(1);
        }
    }
    return pieces;
}

// In ICU's unit, 10,000 saved backtracking states: a million for any text, and 16 more a byte.
std::int32_t stepLimit(std::size_t textSize) {
    return static_cast<std::int32_t>(
        std::min<std::size_t>(100 + textSize / 625, std::numeric_limits<std::int32_t>::max()));
}

constexpr std::int32_t backtrackingBytes = 8'000'000;
constexpr std::int32_t idleBacktrackingBytes = 65'536;

} // namespace

struct Regex::Compiled {
    std::unique_ptr<const icu::RegexPattern> pattern;
    std::size_t groupCount = 0;
    mutable IdlePool<icu::RegexMatcher> matchers;

    [[nodiscard]] std::unique_ptr<icu::RegexMatcher> newMatcher() const;

    // Calls `use` with each match in turn, until it answers false, the text ends or the limits strike.
    template <class Use>
    void forEachMatch(std::string_view text, Use use) const;
};

std::unique_ptr<icu::RegexMatcher> Regex::Compiled::newMatcher() const {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> matcher(pattern->matcher(status));
    requireSuccess(status, "RegexPattern::matcher");
    return matcher;
}

template <class Use>
void Regex::Compiled::forEachMatch(std::string_view text, Use use) const {
    const auto matcher = matchers.take([this] { return newMatcher(); });
    Utf8Text input(text);
    UErrorCode status = U_ZERO_ERROR;
    matcher->setStackLimit(backtrackingBytes, status);
    matcher->setTimeLimit(stepLimit(text.size()), status);
    requireSuccess(status, "RegexMatcher::setTimeLimit");
    matcher->reset(input.get());
    while (matcher->find(status) && U_SUCCESS(status) && use(currentMatch(*matcher))) {
    }
    // One hostile text would otherwise leave megabytes with every idle matcher.
    UErrorCode ignored = U_ZERO_ERROR;
    matcher->setStackLimit(idleBacktrackingBytes, ignored);
}

std::string_view RegexMatch::group(std::size_t index, std::string_view text) const {
    const std::optional<Range>& range = groups[index];
    return range ? text.substr(range->start, range->length) : std::string_view();
}

Regex::Regex(std::string_view pattern) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError position;
    auto compiled = std::make_unique<Compiled>();
    compiled->pattern.reset(
        icu::RegexPattern::compile(icu::UnicodeString::fromUTF8(icuPiece(pattern)), 0, position, status));
    if (U_FAILURE(status))
        throw std::invalid_argument(
            fmt::format("regular expression \"{}\": {}", pattern, u_errorName(status)));
    compiled->groupCount = static_cast<std::size_t>(compiled->newMatcher()->groupCount());
    compiled_ = std::move(compiled);
}

Regex::Regex(Regex&&) noexcept = default;
Regex& Regex::operator=(Regex&&) noexcept = default;
Regex::~Regex() = default;

std::optional<RegexMatch> Regex::firstMatch(std::string_view text) const {
    std::optional<RegexMatch> first;
    compiled_->forEachMatch(text, [&](RegexMatch&& match) {
        first = std::move(match);
        return false;
    });
    return first;
}

std::vector<RegexMatch> Regex::allMatches(std::string_view text) const {
    std::vector<RegexMatch> matches;
    compiled_->forEachMatch(text, [&](RegexMatch&& match) {
        matches.push_back(std::move(match));
        return true;
    });
    return matches;
}

std::string Regex::replacingAll(std::string_view text, std::string_view replacement) const {
    const std::vector<ReplacementPiece> pieces = parseReplacement(replacement, compiled_->groupCount);
    std::string result;
    std::size_t copied = 0;
    compiled_->forEachMatch(text, [&](const RegexMatch& match) {
        result.append(text.substr(copied, match.start() - copied));
        for (const ReplacementPiece& piece : pieces) {
            result.append(piece.literal);
            if (piece.group) result.append(match.group(*piece.group, text));
        }
        copied = match.start() + match.length();
        return true;
    });
    result.append(text.substr(copied));
    return result;
}

std::string Regex::escaped(std::string_view literal) {
    constexpr std::string_view special = R"(\*?+[](){}^$|.#&-)";
    std::string pattern;
    pattern.reserve(literal.size());
    for (const char character : literal) {
        if (special.contains(character)) pattern.push_back('\\');
        pattern.push_back(character);
    }
    return pattern;
}

} // namespace corvane::text
