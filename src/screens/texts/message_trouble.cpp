#include "screens/texts/message_trouble.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "listing/proof/away_proofs.h"
#include "listing/proof/outcome_titles.h"
#include "model/corvane_view_model.h"
#include "records/texts/formatters.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

QString shownDay(Date date) {
    constexpr std::size_t dayLength = std::string_view("2026-11-22").size();
    return screens::wholeText(formatListDate(date).substr(0, dayLength));
}

// The file that a verdict is about, on a line of its own.
QString withPath(const QString& text, const std::string& path) {
    return path.empty() ? text : text + QStringLiteral("\n") + screens::wholeText(path);
}

MessageTrouble proofTrouble(const ProofVerdict& verdict) {
    const QString severe = QStringLiteral("octagon-x");
    const QString danger = QStringLiteral("danger");
    const QString title = screens::wholeText(proofOutcomeTitle(verdict.outcome));
    switch (verdict.outcome) {
    case ProofOutcome::differs:
        return {
            severe, danger, title,
            withPath(QStringLiteral(
                         "原件的内容不在任何归档副本里，已列入未归档。再归档一次即可，原有副本不会改动。"),
                     verdict.path)};
    case ProofOutcome::fileMissing:
        return {
            severe, danger, title,
            withPath(QStringLiteral("归档里的文件不在了，或者内容已被改动，已列入未归档。再归档一次即可。"),
                     verdict.path)};
    case ProofOutcome::unreadable:
        return {severe, danger, title,
                withPath(QStringLiteral("原件或归档文件读不出来，不能确认两者一致，请不要删除原件。"),
                         verdict.path)};
    case ProofOutcome::incomplete:
        return {QStringLiteral("triangle-alert"), QStringLiteral("attention"), title,
                withPath(QStringLiteral("原件比它应有的短，可能没有下载完。归档里保存的是现有的部分。"),
                         verdict.path)};
    case ProofOutcome::notLookedAt:
    case ProofOutcome::proven:
        break;
    }
    return {};
}

} // namespace

MessageTroubles MessageTroubles::known(CorvaneViewModel& model) {
    const MessageCatalog& catalog = model.mail().catalog;
    return {catalog.availability().proofs, catalog.availability().setAsideIDs,
            model.archiving().lastFailures.reasons(), catalog.archivedMessageIDs(),
            catalog.availability().ambiguousIDs};
}

MessageTrouble MessageTroubles::of(const MailMessageRecord& message) const {
    if (!setAsideIDs->empty() && setAsideIDs->contains(message.id)) {
        return {QStringLiteral("minus"), QString(), QStringLiteral("先放一边"),
                QStringLiteral("归档全部时不再试它。它仍算未归档，不会列为可以删除。"), true};
    }
    if (!archivedIDs->contains(message.id)) {
        if (const SharedText* reason = failureReason(*failures, message)) {
            const QString text = screens::wholeText(*reason);
            return {QStringLiteral("octagon-x"),
                    QStringLiteral("danger"),
                    QStringLiteral("上次失败：") + text.section(u'。', 0, 0),
                    text,
                    false,
                    true};
        }
    }
    const ProofVerdict* const verdict =
        proofs->against.empty() ? nullptr : proofs->verdictAgainst(message.id);
    if (verdict != nullptr) return proofTrouble(*verdict);
    const bool mayBeArchived =
        proofs->unmatchedIDs->contains(message.id) || ambiguousIDs->contains(message.id);
    if (mayBeArchived && !archivedIDs->contains(message.id)) {
        return {QStringLiteral("triangle-alert"), QStringLiteral("attention"), QStringLiteral("还没有核对"),
                QStringLiteral("归档里有编号或标题相同的邮件，还不能确定其中有这一封的内容，已列入未归档。"
                               "核对一次，或再归档一次即可。")};
    }
    return {};
}

namespace screens {

QString awayProofText(CorvaneViewModel& model, const MailMessageRecord& message) {
    const ArchiveRoots away = disconnectedRoots(model.library().loader.archiveLocations());
    const auto proof = awayProof(*model.mail().catalog.availability().proofs, away, message);
    if (!proof) return {};
    const QString text = proof->isInCloud ? QStringLiteral("%1 的比对，归档文件现在只在云端")
                                          : QStringLiteral("%1 的比对，归档磁盘未连接");
    return text.arg(shownDay(proof->readAt));
}

QString awayProofsText(const AwayProofs& away) {
    return (away.inCloud == 0 ? QStringLiteral("%1 封是 %2 的比对，归档磁盘未连接")
                              : QStringLiteral("%1 封是 %2 的比对，归档文件现在不在本机"))
        .arg(QStringLiteral("%1"), shownDay(away.oldest));
}

QString awayProofsSentence(const AwayProofs& away) {
    if (away.count == 0) return {};
    return QStringLiteral("已逐字节核对的邮件里，") + awayProofsText(away).arg(shownCount(away.count)) +
           u'。';
}

} // namespace screens

} // namespace corvane
