#include "screens/archive/run/run_pace.h"

#include <algorithm>
#include <cmath>

#include "screens/texts/shown_figures.h"

namespace corvane {

namespace {

constexpr std::chrono::seconds window(10);
constexpr std::chrono::seconds withoutForecast(3);

const QString unknown = QStringLiteral("—");

} // namespace

void RunPace::start(Moment moment) {
    start_ = moment;
    reports_.clear();
}

void RunPace::report(std::int64_t completed, Moment moment) {
    if (!reports_.empty() && completed < reports_.back().completed) reports_.clear();
    reports_.push_back({moment, completed});
    // The last report that is older than the window stays: reports may come further apart than it is long.
    while (reports_.size() > 2 && moment - reports_[1].moment >= window) reports_.pop_front();
}

std::chrono::seconds RunPace::elapsed(Moment now) const {
    return std::chrono::duration_cast<std::chrono::seconds>(now - start_);
}

std::optional<double> RunPace::rate() const {
    if (reports_.size() < 2 || reports_.back().completed == 0) return std::nullopt;
    const std::chrono::duration<double> passed = reports_.back().moment - reports_.front().moment;
    if (passed.count() <= 0) return std::nullopt;
    return static_cast<double>(reports_.back().completed - reports_.front().completed) / passed.count();
}

std::optional<std::chrono::seconds> RunPace::timeLeft(std::int64_t total, Moment now) const {
    const auto perSecond = rate();
    if (now - start_ < withoutForecast || !perSecond || *perSecond <= 0) return std::nullopt;
    const Report& last = reports_.back();
    const std::chrono::duration<double> sinceLast = now - last.moment;
    const double left = static_cast<double>(total - last.completed) / *perSecond - sinceLast.count();
    return std::chrono::seconds(std::max(std::llround(left), 1LL));
}

namespace screens {

QString shownRate(std::optional<double> rate) {
    if (!rate) return unknown;
    if (*rate >= 1 || *rate <= 0)
        return QStringLiteral("%1 封 / 秒").arg(screens::shownCount(std::llround(*rate)));
    return QStringLiteral("%1 封 / 分钟").arg(screens::shownCount(std::max(std::llround(*rate * 60), 1LL)));
}

QString shownTimeLeft(std::optional<std::chrono::seconds> left) {
    if (!left) return unknown;
    const std::int64_t seconds = left->count();
    if (seconds < 60) return QStringLiteral("约 %1 秒").arg(seconds);
    const std::int64_t minutes = (seconds + 30) / 60;
    if (minutes < 60) return QStringLiteral("约 %1 分钟").arg(minutes);
    const std::int64_t rest = minutes % 60;
    return rest == 0 ? QStringLiteral("约 %1 小时").arg(minutes / 60)
                     : QStringLiteral("约 %1 小时 %2 分钟").arg(minutes / 60).arg(rest);
}

} // namespace screens

} // namespace corvane
