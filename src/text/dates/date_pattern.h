// Reading and writing points in time by Unicode date patterns (UTS #35) in the Gregorian calendar. The time
// zone is the one that the process had (TZ, else the system's) when the pattern was made, unless the text
// names its own. Making one costs some 50 microseconds, a use 5. Thread-safe.
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

    // The pattern must take the whole text, with ASCII digits and blanks. "yyyy" takes exactly four digits,
    // and "yy" two, for the years 1950 to 2049 (RFC 5322 section 4.3). No field rolls over: there is no
    // February 30. A weekday that is not that of the date is let pass. A time without a zone is local time.
    [[nodiscard]] std::optional<std::chrono::sys_seconds> parse(std::string_view text) const;

    [[nodiscard]] std::string format(std::chrono::sys_seconds date) const;

  private:
    struct Formatter;
    std::unique_ptr<const Formatter> formatter_;
};

} // namespace corvane::text
