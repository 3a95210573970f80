#include "screens/texts/shown_figures.h"

#include <QLocale>
#include <fmt/format.h>

#include "records/texts/formatters.h"

namespace corvane::screens {

QString shownCount(std::int64_t count) {
    return QLocale(QLocale::Chinese).toString(static_cast<qlonglong>(count));
}

QString shownMessageCount(std::int64_t count) {
    return shownCount(count) + QStringLiteral(" 封");
}

QString undatedTitle() {
    return QStringLiteral("没有日期");
}

QString undatedRemark(std::int64_t count) {
    return QStringLiteral("另有 %1").arg(shownMessageCount(count)) + undatedTitle();
}

QString shownYear(std::int64_t year) {
    return QStringLiteral("%1 年").arg(year);
}

QString shownSize(std::int64_t bytes) {
    return bytes == 0 ? QStringLiteral("—") : QString::fromStdString(formatByteCount(bytes));
}

QString shownDuration(std::int64_t seconds) {
    const std::int64_t minutes = seconds / 60;
    if (minutes < 60) return QString::fromStdString(fmt::format("{}:{:02}", minutes, seconds % 60));
    return QString::fromStdString(fmt::format("{}:{:02}:{:02}", minutes / 60, minutes % 60, seconds % 60));
}

QString shownPath(const QString& path, const QString& home) {
    if (home.isEmpty()) return path;
    if (path == home) return QStringLiteral("~");
    return path.startsWith(home + QLatin1Char('/')) ? QLatin1Char('~') + path.mid(home.size()) : path;
}

} // namespace corvane::screens
