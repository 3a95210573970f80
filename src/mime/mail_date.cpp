#include "mime/mail_date.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <system_error>
#include <vector>

#include "text/dates/date_pattern.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

// The forms of date headers, in the order in which they are tried. A numeric zone goes before a named one,
// and the forms with a zone before those without, so that a looser pattern doesn't read a date with a zone as
// local time.
constexpr std::array headerForms = {
    "EEE, d MMM yyyy HH:mm:ss Z", "EEE, dd MMM yyyy HH:mm:ss Z", "d MMM yyyy HH:mm:ss Z",
    "dd MMM yyyy HH:mm:ss Z",     "EEE, d MMM yyyy HH:mm:ss z",  "EEE, dd MMM yyyy HH:mm:ss z",
    "d MMM yyyy HH:mm:ss z",      "dd MMM yyyy HH:mm:ss z",      "EEE, d MMM yyyy HH:mm:ss",
    "EEE, dd MMM yyyy HH:mm:ss",  "d MMM yyyy HH:mm:ss",         "dd MMM yyyy HH:mm:ss",
    "EEE, d MMM yyyy HH:mm Z",    "EEE, dd MMM yyyy HH:mm Z",    "d MMM yyyy HH:mm Z",
    "dd MMM yyyy HH:mm Z",        "EEE, d MMM yy HH:mm:ss Z",    "EEE, dd MMM yy HH:mm:ss Z",
    "d MMM yy HH:mm:ss Z",        "dd MMM yy HH:mm:ss Z",        "yyyy-MM-dd HH:mm:ss Z",
    "yyyy-MM-dd HH:mm:ss z",      "yyyy-MM-dd HH:mm:ss",         "yyyy-MM-dd'T'HH:mm:ssZ",
    "yyyy-MM-dd'T'HH:mm:ss'Z'",   "yyyy-MM-dd'T'HH:mm:ss",
};

const std::vector<text::DatePattern>& headerPatterns() {
    static const std::vector<text::DatePattern> patterns = [] {
        std::vector<text::DatePattern> made;
        made.reserve(std::size(headerForms));
        for (const char* pattern : headerForms) made.emplace_back("en_US_POSIX", pattern);
        return made;
    }();
    return patterns;
}

// Reads a text from its start; after the first part that doesn't fit, every later read fails too.
class Cursor {
  public:
    explicit Cursor(std::string_view text)
      : rest_(text) {}

    int digits(std::size_t count) {
        int value = 0;
        const std::string_view taken = rest_.substr(0, count);
        const auto [stop, error] = std::from_chars(taken.begin(), taken.end(), value);
        if (taken.size() < count || taken.front() == '-' || error != std::errc() || stop != taken.end())
            fits_ = false;
        rest_.remove_prefix(taken.size());
        return value;
    }

    void literal(char expected) {
        if (!take(expected)) fits_ = false;
    }

    bool take(char optional) {
        if (rest_.empty() || rest_.front() != optional) return false;
        rest_.remove_prefix(1);
        return true;
    }

    void skipDigits() {
        const std::size_t end = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
        if (end == 0) fits_ = false;
        rest_.remove_prefix(end);
    }

    [[nodiscard]] bool fitsWholly() const { return fits_ && rest_.empty(); }

  private:
    std::string_view rest_;
    bool fits_ = true;
};

std::chrono::minutes zoneOffset(Cursor& cursor) {
    if (cursor.take('Z')) return {};
    const bool isWest = cursor.take('-');
    if (!isWest) cursor.literal('+');
    const std::chrono::hours hours(cursor.digits(2));
    cursor.take(':');
    const auto offset = hours + std::chrono::minutes(cursor.digits(2));
    return isWest ? -offset : offset;
}

// RFC 3339 date-time.
std::optional<std::chrono::sys_seconds> parseInternetDateTime(std::string_view text) {
    using namespace std::chrono;
    Cursor cursor(text);
    const year yearPart(cursor.digits(4));
    cursor.literal('-');
    const month monthPart(static_cast<unsigned>(cursor.digits(2)));
    cursor.literal('-');
    const day dayPart(static_cast<unsigned>(cursor.digits(2)));
    cursor.literal('T');
    const int hour = cursor.digits(2);
    cursor.literal(':');
    const int minute = cursor.digits(2);
    cursor.literal(':');
    const int second = cursor.digits(2);
    if (cursor.take('.')) cursor.skipDigits();
    const minutes offset = zoneOffset(cursor);
    const year_month_day date(yearPart, monthPart, dayPart);
    if (!cursor.fitsWholly() || !date.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return sys_days(date) + hours(hour) + minutes(minute) + seconds(second) - offset;
}

std::string_view withoutClosingComment(std::string_view text) {
    if (!text.ends_with(')')) return text;
    const std::size_t open = text.rfind('(');
    if (open == std::string_view::npos) return text;
    const std::string_view before = text::trimBlanks(text.substr(0, open));
    return before.empty() ? text : before;
}

} // namespace

std::optional<std::chrono::sys_seconds> parseMailDate(std::string_view header) {
    const std::string_view text = withoutClosingComment(text::trimBlanks(header));
    for (const auto& pattern : headerPatterns()) {
        if (const auto date = pattern.parse(text)) return date;
    }
    return parseInternetDateTime(text);
}

} // namespace corvane::mime
