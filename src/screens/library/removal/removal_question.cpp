#include "screens/library/removal/removal_question.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "records/texts/formatters.h"
#include "screens/texts/archive_place.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using Status = ArchivedOriginalPresenceStatus;

// A key that is pressed twice never stops what its first press began.
constexpr std::chrono::milliseconds stopPatience(2000);

QString sizeText(std::int64_t bytes) {
    return screens::wholeText(formatByteCount(bytes));
}

QString stateOf(Status status) {
    switch (status) {
    case Status::missing:
        return QStringLiteral("这是唯一的一份");
    case Status::present:
        return QStringLiteral("Mail 里还有原件");
    case Status::unknown:
        break;
    }
    return QStringLiteral("没有对照过 Mail");
}

} // namespace

RemovalQuestion::RemovalQuestion(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , listTask_(model.context().tasks)
  , reportTask_(model.context().tasks) {
    connect(&model.library().removal, &ArchiveRemovalFlow::removalEnded, this, &RemovalQuestion::handleEnd);
    connect(&model.library().presence, &PresenceFlow::presenceChanged, this, [this] {
        if (step_ == Step::Asking) makeList();
    });
    connect(&model.library().loader, &LibraryLoader::archiveLocationsChanged, this,
            &RemovalQuestion::changed);
    connect(&model.library().removal, &ArchiveRemovalFlow::progressChanged, this,
            &RemovalQuestion::progressChanged);
    connect(&onlyCopy_, &OnlyCopyWarning::changed, this, &RemovalQuestion::changed);
    connect(this, &RemovalQuestion::changed, this, &RemovalQuestion::progressChanged);
}

void RemovalQuestion::ask(SharedLibraryList list, std::vector<EntryPosition> entries) {
    if (entries.empty() || step_ == Step::Removing || model_.library().removal.isRemoving()) return;
    asked_ = {std::move(list), std::move(entries)};
    makeList();
}

void RemovalQuestion::makeList() {
    struct Job {
        Asked asked;
        SharedPresence presence;
    };

    listTask_.start(
        TaskPriority::userInitiated, Job{asked_, model_.library().presence.presence()},
        [](const Job& job, const TaskHandle&) {
            return removalList(*job.asked.list, job.asked.entries, *job.presence);
        },
        [this](RemovalList made) {
            if (model_.library().removal.isRemoving()) return;
            if (step_ != Step::Asking) onlyCopy_.takeBackTick();
            model_.context().tasks.discard(std::exchange(list_, std::move(made)).entries);
            onlyCopy_.show(list_.missing, list_.unknown);
            report_ = {};
            setStep(Step::Asking);
        });
    Q_EMIT changed();
}

void RemovalQuestion::accept() {
    if (step_ != Step::Asking || !canAccept()) return;
    isOurs_ = model_.library().removal.deleteArchivedEntries(list_.entries);
    if (!isOurs_) return;
    listTask_.cancel();
    isStopping_ = false;
    begun_.start();
    setStep(Step::Removing);
}

void RemovalQuestion::stop() {
    if (!canStop()) return;
    isStopping_ = true;
    model_.library().removal.cancel();
    Q_EMIT progressChanged();
}

bool RemovalQuestion::canStop() const {
    return step_ == Step::Removing && !isStopping_ && begun_.hasExpired(stopPatience.count());
}

void RemovalQuestion::close() {
    if (step_ == Step::Removing) return;
    listTask_.cancel();
    setStep(Step::Closed);
}

void RemovalQuestion::handleEnd() {
    if (!std::exchange(isOurs_, false)) return;
    const auto& end = model_.library().removal.lastEnd();
    if (!end || end->failures.empty()) return setStep(Step::Closed);

    struct Job {
        RemovalList list;
        std::vector<ArchiveRemovalEnd::Failure> failures;
    };

    reportTask_.start(
        TaskPriority::userInitiated, Job{list_, end->failures},
        [](const Job& job, const TaskHandle&) { return removalReport(job.list, job.failures); },
        [this](RemovalReport report) {
            report_ = std::move(report);
            setStep(Step::Failed);
        });
}

void RemovalQuestion::setStep(Step step) {
    step_ = step;
    // It would keep the whole index.
    if (step != Step::Asking) model_.context().tasks.discard(std::exchange(asked_, {}).list);
    Q_EMIT changed();
}

bool RemovalQuestion::isConnected() const {
    return std::ranges::all_of(list_.roots, [&](const std::string& root) {
        const ArchiveLocation* location = model_.library().loader.location(root);
        return location == nullptr || location->isConnected;
    });
}

bool RemovalQuestion::canAccept() const {
    return step_ == Step::Asking && !listTask_.isRunning() && isConnected() && onlyCopy_.isAnswered();
}

QString RemovalQuestion::title() const {
    if (step_ != Step::Failed)
        return QStringLiteral("从归档里删除 %1 封邮件？").arg(screens::shownCount(count()));
    const auto& end = *model_.library().removal.lastEnd();
    return QStringLiteral("删除了 %1 封，%2 封没有删掉")
        .arg(screens::shownCount(std::ssize(end.removedIDs)), screens::shownCount(std::ssize(end.failures)));
}

QString RemovalQuestion::line() const {
    if (step_ == Step::Failed) return failedLine();
    QStringList places;
    for (const std::string& root : list_.roots)
        places += u'「' + screens::archivePlaceName(model_.library().loader, root) + u'」';
    return QStringLiteral("%1 封，共 %2，在%3里。Mail 里的邮件不会改动。")
        .arg(screens::shownCount(count()), sizeText(list_.bytes), places.join(u'、'));
}

QString RemovalQuestion::failedLine() const {
    if (report_.recordsGone == 0) return QStringLiteral("没有删掉的仍在归档库里。原因见下面。");
    if (report_.recordsGone == failedCount())
        return QStringLiteral("没有删掉的文件没有动过，它们的记录已不在归档库里。原因见下面。");
    return QStringLiteral("没有删掉的文件都没有动过；其中 %1 封的记录已不在归档库里。原因见下面。")
        .arg(screens::shownCount(report_.recordsGone));
}

QVariantList RemovalQuestion::items() const {
    QVariantList shown;
    const std::size_t end = std::min(list_.entries->size(), mostRemovalsShown);
    for (std::size_t at = 0; at < end; ++at) {
        const ArchivedEmailRecord& record = (*list_.entries)[at].record;
        const Status status = list_.statusAt(at);
        shown.append(QVariantMap{
            {QStringLiteral("subject"), screens::shownLine(record.subject)},
            {QStringLiteral("sender"), screens::shownSender(record.sender)},
            {QStringLiteral("dateText"), screens::wholeText(formatMailDate(record.date))},
            {QStringLiteral("sizeText"), sizeText(record.sizeBytes)},
            {QStringLiteral("state"), stateOf(status)},
            {QStringLiteral("only"), status != Status::present},
        });
    }
    return shown;
}

QString RemovalQuestion::note() const {
    if (step_ == Step::Removing) {
        const auto tried = static_cast<std::int64_t>(model_.library().removal.triedFiles());
        return (isStopping_ ? QStringLiteral("正在停止，已处理 %1 / %2") : QStringLiteral("正在删除 %1 / %2"))
            .arg(screens::shownCount(tried), screens::shownCount(count()));
    }
    if (!isConnected()) return QStringLiteral("归档位置没有连接");
    return onlyCopy_.isAnswered() ? QString() : QStringLiteral("勾选之后才能删除");
}

int RemovalQuestion::failedCount() const {
    const auto& end = model_.library().removal.lastEnd();
    return end ? static_cast<int>(end->failures.size()) : 0;
}

QVariantList RemovalQuestion::figures() const {
    const auto& end = model_.library().removal.lastEnd();
    if (step_ != Step::Failed || !end) return {};
    const auto figure = [](const char16_t* label, std::int64_t number, const QString& line,
                           const char16_t* tone) {
        return QVariantMap{{QStringLiteral("label"), QString::fromUtf16(label)},
                           {QStringLiteral("count"), screens::shownCount(number)},
                           {QStringLiteral("line"), line},
                           {QStringLiteral("tone"), QString::fromUtf16(tone)}};
    };
    // Each that was asked about has to be in one of both.
    const bool addsUp = std::cmp_equal(end->removedIDs.size() + end->failures.size(), count());
    return {figure(u"已删除", std::ssize(end->removedIDs),
                   addsUp ? sizeText(list_.bytes - report_.failedBytes) : QString(), u""),
            figure(u"没有删掉", std::ssize(end->failures), sizeText(report_.failedBytes), u"danger"),
            figure(u"合计", std::ssize(end->removedIDs) + std::ssize(end->failures),
                   addsUp ? QStringLiteral("与所选封数一致")
                          : QStringLiteral("所选的是 %1 封").arg(screens::shownCount(count())),
                   addsUp ? u"" : u"attention")};
}

} // namespace corvane
