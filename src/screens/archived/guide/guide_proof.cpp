#include "screens/archived/guide/guide_proof.h"

#include <utility>

#include "records/texts/formatters.h"
#include "screens/texts/message_trouble.h"
#include "screens/texts/proof_figures.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

using screens::wholeText;

GuideProof::GuideProof(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , away_(model.context(), model.mail().catalog) {
    connect(&away_, &AwayProofCount::changed, this, &GuideProof::changed);
    connect(&model.library().loader, &LibraryLoader::looksEnded, this, &GuideProof::compare);
}

void GuideProof::show(OriginalKnowledge knowledge, std::optional<std::int64_t> freeable) {
    knowledge_ = knowledge;
    freeable_ = freeable;
    const LibraryLoader& library = model_.library().loader;
    if (freeable_) away_.count(scope_, library.archiveLocations(), *library.archivedFiles());
    Q_EMIT changed();
}

bool GuideProof::isComparing() const {
    using enum OriginalKnowledge;
    return looksAtArchives_ || isRunning() || model_.mail().counts.isReading() ||
           model_.library().presence.archivedOriginalPresenceChecking() || knowledge_ == checking ||
           knowledge_ == waiting || knowledge_ == scanning;
}

void GuideProof::start() {
    if (scope_.accountPrefixes.empty() || scope_.years.empty()) return;
    looksAtArchives_ = true;
    model_.lookAtArchives();
    if (!model_.library().loader.isLooking()) compare();
}

void GuideProof::compare() {
    if (std::exchange(looksAtArchives_, false)) model_.archiving().proof.prove(scope_);
}

double GuideProof::fraction() const {
    return screens::proofFraction(model_.archiving().proof.progress());
}

QString GuideProof::title() const {
    if (isComparing()) return QStringLiteral("核对要删除的原件");
    if (!freeable_) return QStringLiteral("现在没有可以清理的年份");
    return QStringLiteral("%1原件与归档副本一致").arg(screens::shownMessageCount(*freeable_));
}

QString GuideProof::line() const {
    if (isRunning()) return QStringLiteral("逐字节对照归档副本，全部一致才给出条件。");
    if (isComparing()) return QStringLiteral("正在对照 Mail 中的原件状态");
    if (!freeable_) return QStringLiteral("核对之后有年份可以清理时，这里给出条件。");
    const auto& checkedAt = model_.library().presence.presence()->checkedAt;
    QString line = QStringLiteral("%1 对照 Mail。之后原件有变动时，这里会先再核对。")
                       .arg(wholeText(formatListDate(checkedAt.value_or(Date()))));
    if (const auto& scannedAt = model_.mail().scanFlow.cacheLoadedAt())
        line += QStringLiteral("Mail 数据更新于 %1。").arg(wholeText(formatListDate(*scannedAt)));
    return line + screens::awayProofsSentence(away_.found());
}

QString GuideProof::count() const {
    return screens::proofCount(model_.archiving().proof.progress());
}

} // namespace corvane
