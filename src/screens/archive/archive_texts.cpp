#include "screens/archive/archive_texts.h"

#include <QStringList>

#include "listing/archive_capacity.h"
#include "screens/texts/shown_figures.h"

namespace corvane::screens {

namespace {

constexpr std::size_t yearsNamed = 4;

QString yearName(std::int64_t year) {
    return QStringLiteral("%1 年").arg(year);
}

} // namespace

QString archiveButtonTitle(const DestinationView& destination, std::int64_t selectedCount) {
    if (!destination.path) return QStringLiteral("先选择位置");
    if (!destination.facts.connected) return QStringLiteral("位置不可用");
    return selectedCount > 0 ? QStringLiteral("开始归档") : QStringLiteral("选择邮件后归档");
}

QString archiveSelectionSummary(std::int64_t count, std::int64_t bytes) {
    if (count == 0) return QStringLiteral("选择要归档的邮件后，底部按钮会启用。");
    return shownCount(count) + QStringLiteral(" 封邮件，共 ") + shownSize(bytes);
}

QString archiveScopeTitle(const std::set<std::int64_t>& years) {
    if (years.empty()) return QStringLiteral("全部年份");
    const std::int64_t first = *years.begin();
    const std::int64_t last = *years.rbegin();
    if (years.size() > yearsNamed) {
        const bool isUnbroken = last - first + 1 == static_cast<std::int64_t>(years.size());
        return isUnbroken ? QStringLiteral("%1至 %2").arg(yearName(first), yearName(last))
                          : QStringLiteral("%1等 %2 个年份").arg(yearName(first)).arg(years.size());
    }
    QStringList names;
    for (const std::int64_t year : years) names << yearName(year);
    return names.join(QStringLiteral("、"));
}

QString archiveEmptyTitle(const DeletionSafety& safety) {
    return safety.local >= 1 && safety.archived == safety.local ? QStringLiteral("当前范围已全部归档")
                                                                : QStringLiteral("没有可归档的邮件");
}

QString archiveEmptyDescription(const QString& scopeTitle, const DeletionSafety& safety) {
    const auto& [local, archived, serverOnly] = safety;
    if (local == 0 && serverOnly >= 1) {
        return scopeTitle + QStringLiteral(" 有 %1 封仅在服务器上，本机未下载，当前无法归档。")
                                .arg(shownCount(serverOnly));
    }
    if (local >= 1 && archived == local) {
        return scopeTitle + QStringLiteral(" 共有 %1 封本地邮件，已归档 %2 封，所以不会重复出现在候选列表。")
                                .arg(shownCount(local), shownCount(archived));
    }
    if (archived >= 1) {
        return scopeTitle + QStringLiteral(" 本地 %1 封，已归档 %2 封；其余邮件可能被体积阈值过滤。")
                                .arg(shownCount(local), shownCount(archived));
    }
    return QStringLiteral("调整年份范围或降低体积阈值；已归档的邮件不会重复出现。");
}

QString archiveSpaceText(std::int64_t selectedBytes, std::optional<std::int64_t> availableBytes) {
    QString needed =
        QStringLiteral("约需 %1").arg(shownSize(estimatedArchiveBytes(static_cast<double>(selectedBytes))));
    if (!availableBytes) return needed;
    const QString text = QStringLiteral("%1，可用 %2").arg(needed, shownSize(*availableBytes));
    return *availableBytes < estimatedArchiveBytes(static_cast<double>(selectedBytes))
               ? text + QStringLiteral("，空间不足")
               : text;
}

} // namespace corvane::screens
