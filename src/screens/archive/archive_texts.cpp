#include "screens/archive/archive_texts.h"

#include <tuple>

#include <QStringList>

#include "listing/archive_capacity.h"
#include "screens/texts/shown_figures.h"

namespace corvane::screens {

namespace {

constexpr std::size_t yearsNamed = 4;

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
        return isUnbroken ? QStringLiteral("%1至 %2").arg(shownYear(first), shownYear(last))
                          : QStringLiteral("%1等 %2 个年份").arg(shownYear(first)).arg(years.size());
    }
    QStringList names;
    for (const std::int64_t year : years) names << shownYear(year);
    return names.join(QStringLiteral("、"));
}

QString archiveEmptyTitle(const DeletionSafety& safety) {
    return safety.local >= 1 && safety.archived == safety.local ? QStringLiteral("当前范围已全部归档")
                                                                : QStringLiteral("没有可归档的邮件");
}

QString archiveEmptyDescription(const QString& scopeTitle, const DeletionSafety& safety) {
    const auto [local, archived, serverOnly] = std::tuple(safety.local, safety.archived, safety.serverOnly);
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

bool isSpaceShort(std::int64_t selectedBytes, std::optional<std::int64_t> availableBytes) {
    return availableBytes && *availableBytes < estimatedArchiveBytes(static_cast<double>(selectedBytes));
}

QString archiveSpaceText(std::int64_t selectedBytes, std::optional<std::int64_t> availableBytes) {
    QString needed =
        QStringLiteral("约需 %1").arg(shownSize(estimatedArchiveBytes(static_cast<double>(selectedBytes))));
    if (!availableBytes) return needed;
    const QString text = QStringLiteral("%1，可用 %2").arg(needed, shownSize(*availableBytes));
    return isSpaceShort(selectedBytes, availableBytes) ? text + QStringLiteral("，空间不足") : text;
}

QString archiveTickedText(std::int64_t tickedCount, std::int64_t count) {
    return QStringLiteral("已勾选 %1，共 %2").arg(shownMessageCount(tickedCount), shownMessageCount(count));
}

QString archiveFootnote(const DestinationView& destination) {
    return !destination.facts.connected && destination.isOnRemovableDisk()
               ? QStringLiteral("归档位置所在的 U 盘 / 外置盘未连接，请插入后再归档。")
               : QStringLiteral("每封写好后都会从磁盘重新读出核对");
}

QStringList archiveSizeTitles() {
    return {QStringLiteral("不限"), QStringLiteral("10 MB"), QStringLiteral("50 MB"),
            QStringLiteral("100 MB")};
}

} // namespace corvane::screens
