#include "screens/home/proof_status.h"

#include <memory>
#include <utility>

#include <QVariantMap>

#include "locations/loading/all_files_here.h"
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

struct AwayJob {
    SharedMessageList messages;
    SharedProofTable proofs;
    std::shared_ptr<const YearByID> years;
    ArchiveRoots roots;
    ProofScope scope;
};

AwayProofs awayProofsOf(const AwayJob& job, const TaskHandle&) {
    return awayProofs(*job.proofs, job.roots, *job.messages,
                      [&](const MailMessageRecord& message) { return job.scope.holds(message, *job.years); });
}

QVariantList itemsOf(const DeletionSafety& safety, const AwayProofs& away) {
    QVariantList items;
    const ProofCounts& proofs = safety.proofs;
    addItem(items, "circle-check", "safe", QStringLiteral("已逐字节核对 %1 封"), proofs.proven);
    addItem(items, "unplug", "",
            (away.inCloud == 0 ? QStringLiteral("其中 %1 封是 %2 的比对，归档磁盘未连接")
                               : QStringLiteral("其中 %1 封是 %2 的比对，归档文件现在不在本机"))
                .arg(QStringLiteral("%1"), screens::shownDay(away.oldest)),
            away.count);
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
  , awayTask_(model.context().tasks) {
    connect(&model.archiving().proof, &ProofFlow::progressChanged, this, &ProofStatus::changed);
    connect(&model.archiving().proof, &ProofFlow::proofEnded, this, &ProofStatus::changed);
}

void ProofStatus::show(const DeletionSafety& safety, const ProofScope& scope, bool isKnown) {
    safety_ = safety;
    const bool hadFigures = std::exchange(isKnown_, isKnown);
    countAway(scope);
    updateItems();
    if (hadFigures != isKnown) Q_EMIT changed();
}

void ProofStatus::countAway(const ProofScope& scope) {
    const MessageCatalog& catalog = model_.mail().catalog;
    AwayJob job{catalog.messages(), catalog.availability().proofs, catalog.messageYearByID(),
                disconnectedRoots(model_.library().loader.archiveLocations()), scope};
    const LibraryLoader& library = model_.library().loader;
    if (job.roots.empty() && areAllFilesHere(*library.archivedFiles(), library.archiveLocations())) {
        awayTask_.cancel();
        away_ = {};
        return;
    }
    awayTask_.start(TaskPriority::utility, std::move(job), &awayProofsOf, [this](const AwayProofs& away) {
        away_ = away;
        updateItems();
    });
}

void ProofStatus::updateItems() {
    QVariantList items = isKnown_ ? itemsOf(safety_, away_) : QVariantList();
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
