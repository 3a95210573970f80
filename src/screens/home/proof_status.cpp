#include "screens/home/proof_status.h"

#include <utility>

#include <QVariantMap>

#include "screens/texts/message_trouble.h"
#include "screens/texts/partial_mail.h"
#include "screens/texts/proof_figures.h"
#include "screens/texts/shown_figures.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownSize;

void addItem(QVariantList& items, const char* symbol, const char* tone, const QString& text,
             std::int64_t count) {
    if (count == 0) return;
    items.append(QVariantMap{{QStringLiteral("symbol"), QString::fromLatin1(symbol)},
                             {QStringLiteral("tone"), QString::fromLatin1(tone)},
                             {QStringLiteral("text"), text.arg(shownCount(count))}});
}

bool isAnyInTrouble(const DeletionSafety& safety) {
    const ProofCounts& proofs = safety.proofs;
    return proofs.differs + proofs.fileMissing + proofs.unreadable + proofs.incomplete + safety.setAside > 0;
}

QVariantList itemsOf(const DeletionSafety& safety, const AwayProofs& away) {
    QVariantList items;
    const ProofCounts& proofs = safety.proofs;
    addItem(items, "circle-check", "safe", QStringLiteral("已逐字节核对 %1 封"), proofs.proven);
    addItem(items, "unplug", "", QStringLiteral("其中 ") + screens::awayProofsText(away), away.count);
    addItem(items, "search", "", QStringLiteral("还没核对 %1 封"), safety.notLookedAt());
    addItem(items, "octagon-x", "danger", QStringLiteral("与归档不一致 %1 封，已列入未归档"), proofs.differs);
    addItem(items, "octagon-x", "danger", QStringLiteral("归档文件不见了或有改动 %1 封"), proofs.fileMissing);
    addItem(items, "octagon-x", "danger", QStringLiteral("读不出来 %1 封"), proofs.unreadable);
    addItem(items, "triangle-alert", "attention", QStringLiteral("原件不完整 %1 封"), proofs.incomplete);
    addItem(items, "minus", "", QStringLiteral("先放一边 %1 封"), safety.setAside);
    return items;
}

} // namespace

ProofStatus::ProofStatus(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , away_(model.context(), model.mail().catalog) {
    connect(&away_, &AwayProofCount::changed, this, &ProofStatus::updateItems);
    connect(&model.archiving().proof, &ProofFlow::progressChanged, this, &ProofStatus::changed);
    connect(&model.archiving().proof, &ProofFlow::proofEnded, this, &ProofStatus::changed);
}

void ProofStatus::show(const DeletionSafety& safety, const ProofScope& scope, bool isKnown) {
    safety_ = safety;
    const bool hadFigures = std::exchange(isKnown_, isKnown);
    const LibraryLoader& library = model_.library().loader;
    away_.count(scope, library.archiveLocations(), *library.archivedFiles());
    updateItems();
    if (hadFigures != isKnown) Q_EMIT changed();
}

void ProofStatus::updateItems() {
    QVariantList items = isKnown_ ? itemsOf(safety_, away_.found()) : QVariantList();
    const std::int64_t notLookedAt = isKnown_ ? safety_.notLookedAt() : 0;
    const bool troubled = isKnown_ && isAnyInTrouble(safety_);
    const std::int64_t partial = isKnown_ ? safety_.partial : 0;
    if (items == items_ && notLookedAt == notLookedAt_ && troubled == hasTroubles_ && partial == partial_)
        return;
    items_ = std::move(items);
    partial_ = partial;
    notLookedAt_ = notLookedAt;
    hasTroubles_ = troubled;
    Q_EMIT changed();
}

bool ProofStatus::isAwaited() const {
    return !isKnown_ && !model_.library().loader.archivedEntries()->empty();
}

QString ProofStatus::partialText() const {
    return screens::partialMailText(partial_);
}

double ProofStatus::fraction() const {
    return screens::proofFraction(model_.archiving().proof.progress());
}

QString ProofStatus::progressText() const {
    const auto& progress = model_.archiving().proof.progress();
    if (!progress) return {};
    const QString counts = QStringLiteral("正在逐字节核对 %1 封").arg(screens::proofCount(progress));
    return progress->bytesRead == 0 ? counts
                                    : counts + QStringLiteral("，已读 ") + shownSize(progress->bytesRead);
}

} // namespace corvane
