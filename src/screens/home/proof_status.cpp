#include "screens/home/proof_status.h"

#include <utility>

#include <QVariantMap>

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

QVariantList itemsOf(const DeletionSafety& safety) {
    QVariantList items;
    const ProofCounts& proofs = safety.proofs;
    addItem(items, "circle-check", "safe", QStringLiteral("已逐字节核对 %1 封"), proofs.proven);
    addItem(items, "search", "", QStringLiteral("还没核对 %1 封"), safety.notLookedAt());
    addItem(items, "octagon-x", "danger", QStringLiteral("与归档不一致 %1 封，已列入未归档"), proofs.differs);
    addItem(items, "octagon-x", "danger", QStringLiteral("归档文件不见了 %1 封，已列入未归档"),
            proofs.fileMissing);
    addItem(items, "octagon-x", "danger", QStringLiteral("读不出来 %1 封"), proofs.unreadable);
    addItem(items, "triangle-alert", "attention", QStringLiteral("原件不完整 %1 封"), proofs.incomplete);
    addItem(items, "minus", "", QStringLiteral("先放一边 %1 封"), safety.setAside);
    return items;
}

} // namespace

ProofStatus::ProofStatus(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model) {
    connect(&model.proof(), &ProofFlow::progressChanged, this, &ProofStatus::changed);
    connect(&model.proof(), &ProofFlow::proofEnded, this, &ProofStatus::changed);
}

void ProofStatus::show(const DeletionSafety& safety, bool isKnown) {
    QVariantList items = isKnown ? itemsOf(safety) : QVariantList();
    const std::int64_t notLookedAt = isKnown ? safety.notLookedAt() : 0;
    if (items == items_ && notLookedAt == notLookedAt_) return;
    items_ = std::move(items);
    notLookedAt_ = notLookedAt;
    Q_EMIT changed();
}

double ProofStatus::fraction() const {
    const auto& progress = model_.proof().progress();
    if (!progress || progress->total == 0) return 0;
    return static_cast<double>(progress->completed) / static_cast<double>(progress->total);
}

QString ProofStatus::progressText() const {
    const auto& progress = model_.proof().progress();
    if (!progress) return {};
    return QStringLiteral("正在逐字节核对 %1 / %2 封，已读 %3")
        .arg(shownCount(progress->completed), shownCount(progress->total), shownSize(progress->bytesRead));
}

} // namespace corvane
