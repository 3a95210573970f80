// The outline of the texts that a date pattern takes: its numbers, names, literals and blanks in their order.
//
// ICU's date parser spends tens of microseconds on a text before it refuses it, and takes years of any
// length. The outline refuses most texts in nanoseconds and counts the digits. What it refuses no parser
// should take; what it lets through is for the parser to judge. Immutable and thread-safe.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace corvane::text {

class DateOutline {
  public:
    // A Unicode date pattern (UTS #35).
    explicit DateOutline(std::string_view pattern);

    // Digits and blanks are ASCII ones. "yyyy" and "yy" stand for as many digits as letters, other numbers
    // for any count, a name for everything up to what follows it in the pattern. Blanks may be more than in
    // the pattern, and may stand before any field.
    [[nodiscard]] bool fits(std::string_view text) const noexcept;

  private:
    enum class Kind { number, name, literal, blanks };

    struct Piece {
        Kind kind;
        char character = 0;    // of a literal
        std::size_t width = 0; // letters of a field
        bool exactWidth = false;
    };

    void addField(char letter, std::size_t width);
    void addLiteral(char character);
    [[nodiscard]] std::optional<std::string_view> behind(std::size_t piece,
                                                         std::string_view text) const noexcept;
    [[nodiscard]] std::size_t nameEnd(std::size_t piece, std::string_view text) const noexcept;

    std::vector<Piece> pieces_;
};

} // namespace corvane::text
