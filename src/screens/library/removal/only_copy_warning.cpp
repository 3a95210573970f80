#include "screens/library/removal/only_copy_warning.h"

#include <cstdint>

#include "screens/texts/shown_figures.h"

namespace corvane {

namespace {

QString shown(std::size_t count) {
    return screens::shownCount(static_cast<std::int64_t>(count));
}

} // namespace

void OnlyCopyWarning::show(std::size_t missing, std::size_t unknown) {
    isTicked_ = isTicked_ && missing == missing_ && unknown == unknown_;
    missing_ = missing;
    unknown_ = unknown;
    Q_EMIT changed();
}

void OnlyCopyWarning::setTicked(bool ticked) {
    if (isTicked_ == ticked) return;
    isTicked_ = ticked;
    Q_EMIT changed();
}

QString OnlyCopyWarning::title() const {
    if (missing_ > 0) return QStringLiteral("%1 封已不在 Mail 里，这是唯一的一份").arg(shown(missing_));
    if (unknown_ > 0) return QStringLiteral("%1 封没有对照过 Mail，也可能是唯一的一份").arg(shown(unknown_));
    return {};
}

QString OnlyCopyWarning::line() const {
    if (missing_ > 0 && unknown_ > 0)
        return QStringLiteral("另有 %1 封没有对照过 Mail，也可能是唯一的一份。删除之后，哪里都找不回来。")
            .arg(shown(unknown_));
    return QStringLiteral("删除之后，哪里都找不回来。");
}

QString OnlyCopyWarning::tickTitle() const {
    return QStringLiteral("我知道，这 %1 封也要删除").arg(shown(count()));
}

} // namespace corvane
