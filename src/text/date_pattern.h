// Reading and writing points in time by Unicode date patterns (UTS #35) in the Gregorian calendar. The time
// zone is the one of the process (TZ), unless the text names its own. Thread-safe.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::text {

class DatePattern {
  public:
    // Throws std::invalid_argument for a pattern or locale that ICU doesn't take.
    DatePattern(std::string_view locale, std::string_view pattern);
    DatePattern(DatePattern&&) noexcept;
    DatePattern& operator=(DatePattern&&) noexcept;
    ~DatePattern();

    // The pattern must take the whole text, and "yyyy" takes exactly four digits. A time without a zone is
    // local time.
    [[nodiscard]] std::optional<std::chrono::sys_seconds> parse(std::string_view text) const;

    [[nodiscard]] std::string format(std::chrono::sys_seconds date) const;

  private:
    struct Formatter;
    std::unique_ptr<const Formatter> formatter_;
};

} // namespace corvane::text
