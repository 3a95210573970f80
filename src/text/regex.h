// Regular expressions of ICU syntax over UTF-8. A pattern is compiled once and may be used from many threads
// at a time. Matching has a step limit that grows with the text, so that a hostile text costs bounded time:
// past it, or past 8 MB of backtracking state, there is no further match.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::text {

// Byte ranges in the text that was searched; group 0 is the whole match, a group that took no part has no
// value.
struct RegexMatch {
    struct Range {
        std::size_t start = 0;
        std::size_t length = 0;
    };

    std::vector<std::optional<Range>> groups;

    [[nodiscard]] std::size_t start() const { return groups[0]->start; }

    [[nodiscard]] std::size_t length() const { return groups[0]->length; }

    // The text of a group, empty when it took no part.
    [[nodiscard]] std::string_view group(std::size_t index, std::string_view text) const;
};

class Regex {
  public:
    // Throws std::invalid_argument when the pattern doesn't compile.
    explicit Regex(std::string_view pattern);
    Regex(Regex&&) noexcept;
    Regex& operator=(Regex&&) noexcept;
    ~Regex();

    [[nodiscard]] std::optional<RegexMatch> firstMatch(std::string_view text) const;
    [[nodiscard]] std::vector<RegexMatch> allMatches(std::string_view text) const;

    // In the replacement $1 stands for a group, and a backslash takes the meaning from the character behind
    // it. What is not matched is copied byte by byte. Throws std::invalid_argument for a group that isn't
    // there.
    [[nodiscard]] std::string replacingAll(std::string_view text, std::string_view replacement) const;

    // The text with every character that has a meaning in a pattern escaped.
    static std::string escaped(std::string_view literal);

  private:
    struct Compiled;
    std::unique_ptr<const Compiled> compiled_;
};

} // namespace corvane::text
