#include "mime/mail_date.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "records/texts/formatters.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

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
    for (const auto& parser : dateParsers()) {
        if (const auto date = parser.parse(text)) return date;
    }
    return parseInternetDateTime(text);
}

} // namespace corvane::mime
