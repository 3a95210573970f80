#include "text/dates/date_pattern.h"

#include <cmath>
#include <stdexcept>

#include <fmt/format.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include "text/dates/date_outline.h"
#include "text/icu_text.h"
#include "text/idle_pool.h"

namespace corvane::text {

namespace {

// RFC 5322 section 4.3: 50 to 99 are years of the last century.
constexpr std::chrono::sys_days twoDigitYearStart = std::chrono::year(1950) / 1 / 1;

UDate toIcu(std::chrono::sys_seconds date) {
    return static_cast<UDate>(date.time_since_epoch().count()) * U_MILLIS_PER_SECOND;
}

[[noreturn]] void refuse(std::string_view what, std::string_view text) {
    throw std::invalid_argument(fmt::format("date pattern: {} \"{}\"", what, text));
}

std::unique_ptr<const icu::SimpleDateFormat> makeFormat(std::string_view localeName,
                                                        std::string_view pattern) {
    const icu::Locale locale = icu::Locale::createFromName(std::string(localeName).c_str());
    if (locale.isBogus()) refuse("locale", localeName);
    UErrorCode status = U_ZERO_ERROR;
    auto format = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString::fromUTF8(icuPiece(pattern)),
                                                          locale, status);
    requireSuccess(status, "SimpleDateFormat");
    // The zone is asked of the host anew: ICU's own default is kept from its first use on, whatever TZ says
    // later.
    auto calendar =
        std::make_unique<icu::GregorianCalendar>(icu::TimeZone::detectHostTimeZone(), locale, status);
    requireSuccess(status, "GregorianCalendar");
    format->adoptCalendar(calendar.release());
    format->setLenient(false);
    format->set2DigitYearStart(toIcu(twoDigitYearStart), status);
    requireSuccess(status, "set2DigitYearStart");
    // Nothing checks the letters of a pattern before its first use.
    icu::UnicodeString ignored;
    format->format(0, ignored, nullptr, status);
    if (U_FAILURE(status)) refuse("pattern", pattern);
    return format;
}

} // namespace

struct DatePattern::Formatter {
    Formatter(std::string_view locale, std::string_view pattern)
      : outline(pattern)
      , prototype(makeFormat(locale, pattern)) {}

    // ICU advises against using one formatter from two threads.
    [[nodiscard]] auto takeFormat() const {
        return formats.take([this] { return std::unique_ptr<icu::SimpleDateFormat>(prototype->clone()); });
    }

    DateOutline outline;
    std::unique_ptr<const icu::SimpleDateFormat> prototype;
    mutable IdlePool<icu::SimpleDateFormat> formats;
};

DatePattern::DatePattern(std::string_view locale, std::string_view pattern)
  : formatter_(std::make_unique<const Formatter>(locale, pattern)) {}

DatePattern::DatePattern(DatePattern&&) noexcept = default;
DatePattern& DatePattern::operator=(DatePattern&&) noexcept = default;
DatePattern::~DatePattern() = default;

std::optional<std::chrono::sys_seconds> DatePattern::parse(std::string_view text) const {
    if (!formatter_->outline.fits(text)) return std::nullopt;
    const icu::UnicodeString characters = icu::UnicodeString::fromUTF8(icuPiece(text));
    icu::ParsePosition position;
    const UDate date = formatter_->takeFormat()->parse(characters, position);
    // A successful parse may still have left text behind.
    if (position.getErrorIndex() >= 0 || position.getIndex() != characters.length()) return std::nullopt;
    return std::chrono::sys_seconds(
        std::chrono::seconds(std::llround(std::floor(date / U_MILLIS_PER_SECOND))));
}

std::string DatePattern::format(std::chrono::sys_seconds date) const {
    icu::UnicodeString characters;
    formatter_->takeFormat()->format(toIcu(date), characters);
    std::string text;
    return characters.toUTF8String(text);
}

} // namespace corvane::text
