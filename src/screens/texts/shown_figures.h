// Figures as the screens write them.
#pragma once

#include <cstdint>

#include <QString>

namespace corvane::screens {

// Grouped: "12,406".
QString shownCount(std::int64_t count);

// "12,406 封".
QString shownMessageCount(std::int64_t count);

// The heading of mail without a date, beside years.
QString undatedTitle();

// "另有 12 封没有日期".
QString undatedRemark(std::int64_t count);

// "2019 年".
QString shownYear(std::int64_t year);

// As the formatter gives it; a dash for 0.
QString shownSize(std::int64_t bytes);

// "0:42", "12:05", "1:02:09".
QString shownDuration(std::int64_t seconds);

// The path with the user's home as "~".
QString shownPath(const QString& path, const QString& home);

} // namespace corvane::screens
