#include "screens/archive/places/rebuild_notice.h"

#include <cstdint>

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

using screens::shownCount;
using screens::shownMessageCount;

RebuildNotice::RebuildNotice(ArchiveRebuildFlow& rebuild, QObject* parent)
  : QObject(parent)
  , rebuild_(rebuild) {
    connect(&rebuild, &ArchiveRebuildFlow::changed, this, &RebuildNotice::changed);
}

bool RebuildNotice::isShown() const {
    return isRunning() || rebuild_.offer() || rebuild_.outcome();
}

bool RebuildNotice::hasFailed() const {
    return rebuild_.outcome() && !*rebuild_.outcome();
}

QString RebuildNotice::kind() const {
    if (isRunning()) return QStringLiteral("info");
    if (hasFailed()) return QStringLiteral("danger");
    return rebuild_.offer() ? QStringLiteral("attention") : QStringLiteral("info");
}

QString RebuildNotice::title() const {
    if (isRunning()) return QStringLiteral("正在重建索引");
    if (hasFailed()) return QStringLiteral("索引没有重建");
    if (!rebuild_.offer()) return QStringLiteral("索引已重建");
    return rebuild_.offer()->need.isDamaged ? QStringLiteral("这个归档的索引已损坏")
                                            : QStringLiteral("这个归档没有索引");
}

QString RebuildNotice::text() const {
    if (isRunning()) {
        const auto& progress = rebuild_.progress();
        if (progress.all == 0) return QStringLiteral("正在查看文件夹…");
        return QStringLiteral("已读取 %1 / %2 封")
            .arg(shownCount(static_cast<std::int64_t>(progress.read)),
                 shownCount(static_cast<std::int64_t>(progress.all)));
    }
    if (hasFailed()) return screens::shownText(rebuild_.outcome()->error(), screens::rowTextLimit);
    if (!rebuild_.offer()) return resultText();
    return QStringLiteral("文件夹里有 %1邮件，但归档库看不到它们。重建索引会逐封读取这些邮件，不会改动它们。")
        .arg(shownMessageCount(rebuild_.offer()->need.mails));
}

QString RebuildNotice::resultText() const {
    if (!rebuild_.outcome() || !*rebuild_.outcome()) return {};
    const ArchiveRebuild& result = **rebuild_.outcome();
    QString adopted = QStringLiteral("已收入 %1。").arg(shownMessageCount(result.adopted));
    if (result.withUnknownAttachments > 0)
        adopted += QStringLiteral("%1的附件名称没能读出，附件仍在邮件里。")
                       .arg(shownMessageCount(result.withUnknownAttachments));
    if (result.failures.empty()) return adopted;
    const ArchiveRebuild::Failure& first = result.failures.front();
    return adopted + QStringLiteral("%1 个文件没有收入，如“%2”：%3。")
                         .arg(shownCount(static_cast<std::int64_t>(result.failures.size())),
                              screens::shownLine(first.path), screens::shownLine(first.reason));
}

} // namespace corvane
