#include "screens/archive/archive_result.h"

#include <algorithm>

#include <QVariantMap>

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownMessageCount;
using screens::shownSize;

// A sheet that lists a hundred thousand subjects tells nothing; the copied list has all.
constexpr qsizetype shownPerGroup = 20;

struct FailureGroup {
    QString reason;
    std::int64_t count = 0;
    QStringList subjects;
};

// In the order in which the reasons came.
std::vector<FailureGroup> failureGroups(const std::vector<EmailArchiveFailure>& failures) {
    std::vector<FailureGroup> groups;
    for (const EmailArchiveFailure& failure : failures) {
        const QString reason = QString::fromStdString(failure.reason);
        auto group = std::find_if(groups.begin(), groups.end(),
                                  [&](const FailureGroup& known) { return known.reason == reason; });
        if (group == groups.end()) group = groups.insert(groups.end(), {reason, 0, {}});
        group->count += 1;
        if (group->subjects.size() < shownPerGroup) group->subjects << screens::shownLine(failure.subject);
    }
    return groups;
}

QString moreText(std::int64_t hidden) {
    return hidden > 0 ? QStringLiteral("另有 %1，拷贝清单里有全部。").arg(shownMessageCount(hidden))
                      : QString();
}

QVariantList failureGroupsShown(const std::vector<EmailArchiveFailure>& failures) {
    QVariantList shown;
    for (const FailureGroup& group : failureGroups(failures)) {
        shown << QVariantMap{{QStringLiteral("count"), shownCount(group.count)},
                             {QStringLiteral("reason"), group.reason},
                             {QStringLiteral("subjects"), group.subjects},
                             {QStringLiteral("more"), moreText(group.count - group.subjects.size())}};
    }
    return shown;
}

QVariantMap tile(const QString& caption, std::int64_t figure, const QString& line,
                 const QString& meaning = {}) {
    return {{QStringLiteral("caption"), caption},
            {QStringLiteral("figure"), shownCount(figure)},
            {QStringLiteral("line"), line},
            {QStringLiteral("meaning"), figure > 0 ? meaning : QString()}};
}

QVariantList tilesOf(const ArchiveResultFigures& figures, std::int64_t archivedBytes, bool wasCancelled) {
    QString archivedLine = shownSize(archivedBytes);
    if (figures.furtherCopies > 0)
        archivedLine += QStringLiteral(" · 另有 %1 个副本").arg(shownCount(figures.furtherCopies));
    QVariantList tiles{
        tile(QStringLiteral("已归档"), figures.archived, archivedLine, QStringLiteral("safe"))};
    if (figures.skipped > 0)
        tiles << tile(QStringLiteral("已跳过(重复)"), figures.skipped, QStringLiteral("归档库里已有"));
    if (figures.failed > 0)
        tiles << tile(QStringLiteral("失败"), figures.failed, QStringLiteral("原件没有改动"),
                      QStringLiteral("danger"));
    if (wasCancelled)
        tiles << tile(QStringLiteral("没有尝试"), figures.notTried, QStringLiteral("还在未归档里"));
    tiles << tile(QStringLiteral("合计"), figures.chosen, QStringLiteral("与所选封数一致"));
    return tiles;
}

QString titleOf(const EmailArchiveRunResult& result) {
    const QString title = result.wasCancelled ? QStringLiteral("归档已取消") : QStringLiteral("归档完成");
    return result.failedCount > 0
               ? QStringLiteral("%1，%2失败").arg(title, shownMessageCount(result.failedCount))
               : title;
}

QString endTextOf(const EmailArchiveRunResult& result, const ArchiveResultFigures& figures) {
    const QString title = result.wasCancelled ? QStringLiteral("归档已取消") : QStringLiteral("归档完成");
    const QString figure = figures.failed > 0
                               ? QStringLiteral("%1失败").arg(shownMessageCount(figures.failed))
                               : shownMessageCount(figures.archived + figures.skipped);
    return QStringLiteral("%1 · %2").arg(title, figure);
}

void setLooks(ArchiveResultView& view, const EmailArchiveRunResult& result) {
    view.isSafe = !result.hasIssues() && !result.wasCancelled;
    const bool isOnlyCancelled = result.wasCancelled && !result.hasIssues();
    view.tone = view.isSafe       ? QStringLiteral("safe")
                : isOnlyCancelled ? QString()
                                  : QStringLiteral("attention");
    view.symbol = view.isSafe       ? QStringLiteral("checkmark.shield")
                  : isOnlyCancelled ? QStringLiteral("info")
                                    : QStringLiteral("exclamationmark.triangle.fill");
}

void setIssues(ArchiveResultView& view, const EmailArchiveRunResult& result) {
    for (const std::string& warning : result.archiveWarnings) view.warnings << screens::wholeText(warning);
    if (result.failedCount > 0) {
        view.failureTitle = shownMessageCount(result.failedCount) + QStringLiteral("没有完整归档");
        view.failureGroups = failureGroupsShown(result.failures);
        view.retryTitle = QStringLiteral("再试失败的 %1").arg(shownMessageCount(result.failedCount));
    }
    const auto variants = static_cast<qsizetype>(result.variantWarnings.size());
    if (variants == 0) return;
    view.variantTitle =
        shownCount(variants) + QStringLiteral(" 封邮件存在内容不一致的多个副本，已全部保留：");
    for (qsizetype shown = 0; shown < std::min(variants, shownPerGroup); ++shown)
        view.variants << screens::shownLine(result.variantWarnings[static_cast<std::size_t>(shown)]);
    if (variants > shownPerGroup) view.variants << moreText(variants - shownPerGroup);
}

} // namespace

ArchiveResultFigures ArchiveResultFigures::of(const EmailArchiveRunResult& result, std::int64_t chosen) {
    ArchiveResultFigures figures;
    figures.chosen = chosen;
    figures.failed = result.failedCount;
    figures.notTried = std::max<std::int64_t>(0, chosen - result.triedCount);
    const std::int64_t kept = std::max<std::int64_t>(0, chosen - figures.notTried - figures.failed);
    // More files than messages: further versions, and versions of messages that failed later.
    figures.furtherCopies =
        std::max<std::int64_t>(0, result.archivedCount + result.skippedAlreadyArchived - kept);
    figures.archived = std::clamp<std::int64_t>(result.archivedCount - figures.furtherCopies, 0, kept);
    figures.skipped = kept - figures.archived;
    return figures;
}

ArchiveResultView ArchiveResultView::of(const EmailArchiveRunResult& result, std::int64_t chosen) {
    const ArchiveResultFigures figures = ArchiveResultFigures::of(result, chosen);
    ArchiveResultView view;
    view.title = titleOf(result);
    // Where nothing has a copy, no sentence says so.
    const bool hasCopies = figures.archived + figures.skipped > 0;
    view.subtitle = hasCopies ? QStringLiteral("完整邮件已只读备份为 .eml，Mail 未被改动。")
                              : QStringLiteral("没有邮件放入归档库，Mail 未被改动。");
    setLooks(view, result);
    view.endText = endTextOf(result, figures);
    view.tiles = tilesOf(figures, result.archivedBytes, result.wasCancelled);
    setIssues(view, result);
    if (figures.notTried > 0) {
        view.restTitle = QStringLiteral("继续剩余 %1").arg(shownMessageCount(figures.notTried));
        view.nextStep = QStringLiteral("剩余的 %1还在未归档里，已写好的不会重写。")
                            .arg(shownMessageCount(figures.notTried));
    } else if (hasCopies) {
        view.nextStep = QStringLiteral("核对原件，看看哪些可以删除");
    }
    if (hasCopies)
        view.note = QStringLiteral("邮件副本已保存到邮件库。关闭后可以回到归档页继续清理 Mail 空间。");
    return view;
}

namespace screens {

QString failureList(const std::vector<EmailArchiveFailure>& failures) {
    QString text;
    for (const EmailArchiveFailure& failure : failures) {
        const QStringList fields{wholeText(failure.reason).simplified(),
                                 wholeText(failure.subject).simplified(),
                                 wholeText(failure.messageFileURL.path()).replace(u'\n', u' ')};
        text += fields.join(u'\t') + u'\n';
    }
    return text;
}

QString variantList(const std::vector<std::string>& warnings) {
    QString text;
    for (const std::string& warning : warnings) text += wholeText(warning).simplified() + u'\n';
    return text;
}

} // namespace screens

} // namespace corvane
