#include "screens/home/safety_banner.h"

#include "screens/texts/shown_figures.h"

namespace corvane::screens {

namespace {

QString headlineOf(const QString& scopeTitle, const QString& archived, const QString& unarchived) {
    return QStringLiteral("%1：已完成归档 %2 封，未归档 %3 封").arg(scopeTitle, archived, unarchived);
}

QString serverLine(const QString& count) {
    return count + QStringLiteral(" 封仅在服务器上；按日期段删除会同步删除服务器邮件。");
}

struct Advice {
    QString kind;
    QString symbol;
    QString line;
};

// What is to be done with the originals.
Advice adviceOf(const DeletionSafety& safety, bool isServerKnown) {
    if (safety.local == 0)
        return {QStringLiteral("info"), QStringLiteral("info"),
                QStringLiteral("当前筛选里没有本地下载邮件需要处理。")};
    if (safety.local > safety.archived)
        return {QStringLiteral("attention"), QStringLiteral("exclamationmark.triangle.fill"),
                QStringLiteral("先完成剩余邮件归档，再处理 Mail 原件。")};
    if (safety.notLookedAt() > 0)
        return {QStringLiteral("info"), QStringLiteral("search"),
                QStringLiteral("本地原件都有 .eml 副本，还有 %1 封没有逐字节核对，核对之前请先保留原件。")
                    .arg(shownCount(safety.notLookedAt()))};
    if (!safety.isDeletable())
        return {
            QStringLiteral("attention"), QStringLiteral("exclamationmark.triangle.fill"),
            QStringLiteral("本地原件都有 .eml 副本；Mail 里只有一部分的邮件补全并归档之前，请先保留原件。")};
    if (!isServerKnown)
        return {
            QStringLiteral("info"), QStringLiteral("loader-circle"),
            QStringLiteral("本地原件都有 .eml 副本；还不知道有多少邮件仅在服务器上，确认之前请先保留原件。")};
    return {QStringLiteral("safe"), QStringLiteral("checkmark.shield.fill"),
            QStringLiteral("本地原件都有 .eml 副本；确认后应通过 Apple Mail 移到废纸篓。")};
}

} // namespace

SafetyBanner unknownSafetyBanner(const QString& scopeTitle, const QString& reason) {
    const QString unknown = QStringLiteral("—");
    return {QStringLiteral("info"),
            QStringLiteral("loader-circle"),
            headlineOf(scopeTitle, unknown, unknown),
            {reason, serverLine(unknown)}};
}

SafetyBanner deletionSafetyBanner(const QString& scopeTitle, const DeletionSafety& safety,
                                  bool isServerKnown) {
    const Advice advice = adviceOf(safety, isServerKnown);
    SafetyBanner banner{
        advice.kind,
        advice.symbol,
        headlineOf(scopeTitle, shownCount(safety.archived), shownCount(safety.local - safety.archived)),
        {advice.line}};
    if (!isServerKnown) {
        banner.lines << serverLine(QStringLiteral("—"));
    } else if (safety.serverAlone() > 0) {
        banner.lines << serverLine(shownCount(safety.serverAlone()));
    }
    return banner;
}

SafetyBanner partialListBanner(const QString& failure) {
    SafetyBanner banner;
    banner.kind = QStringLiteral("attention");
    banner.symbol = QStringLiteral("exclamationmark.triangle.fill");
    banner.headline = failure.isEmpty() ? QStringLiteral("更新已取消，邮件列表不完整")
                                        : QStringLiteral("更新没有完成，邮件列表不完整");
    if (!failure.isEmpty()) banner.lines << failure;
    banner.lines << QStringLiteral("在完成一次更新之前，这里不判断哪些邮件已经归档、哪些原件可以删除。");
    return banner;
}

} // namespace corvane::screens
