#include "screens/library/removal/removal_question.h"

#include <algorithm>
#include <set>
#include <utility>

#include "locations/places/cloud_providers.h"
#include "platform/paths.h"
#include "records/formatters.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using Status = ArchivedOriginalPresenceStatus;

constexpr std::size_t mostItemsShown = 100;

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

QString placeOf(const std::string& root, const ArchiveLocation* location) {
    const QString folder = screens::shownLine(platform::lastPathComponent(root));
    if (const auto provider = cloudProviderName(root))
        return screens::shownLine(*provider) + QStringLiteral(" · ") + folder;
    return location == nullptr ? folder : screens::shownLine(location->displayName);
}

} // namespace

RemovalQuestion::RemovalQuestion(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model) {
    connect(&model.removal(), &ArchiveRemovalFlow::removalEnded, this, &RemovalQuestion::handleEnd);
    connect(&model.library(), &LibraryLoader::archiveLocationsChanged, this, &RemovalQuestion::changed);
}

void RemovalQuestion::ask(const std::vector<const ArchivedEntry*>& entries) {
    if (entries.empty() || step_ == Step::Removing || model_.removal().isRemoving()) return;
    items_.clear();
    for (const Status status : {Status::missing, Status::unknown, Status::present}) {
        for (const ArchivedEntry* entry : entries) {
            if (model_.presence().archivedOriginalPresenceStatus(*entry) == status)
                items_.push_back({*entry, status});
        }
    }
    isTicked_ = false;
    setStep(Step::Asking);
}

void RemovalQuestion::accept() {
    if (step_ != Step::Asking || !canAccept()) return;
    std::vector<ArchivedEntry> entries;
    for (const Item& item : items_) entries.push_back(item.entry);
    isOurs_ = model_.removal().deleteArchivedEntries(entries);
    if (isOurs_) setStep(Step::Removing);
}

void RemovalQuestion::close() {
    if (step_ != Step::Removing) setStep(Step::Closed);
}

void RemovalQuestion::handleEnd() {
    if (!isOurs_) return;
    isOurs_ = false;
    const auto& end = model_.removal().lastEnd();
    setStep(end && !end->failures.empty() ? Step::Failed : Step::Closed);
}

void RemovalQuestion::setStep(Step step) {
    step_ = step;
    Q_EMIT changed();
}

void RemovalQuestion::setTicked(bool ticked) {
    if (step_ != Step::Asking || isTicked_ == ticked) return;
    isTicked_ = ticked;
    Q_EMIT changed();
}

std::int64_t RemovalQuestion::countOf(Status status) const {
    return std::ranges::count(items_, status, &Item::status);
}

std::int64_t RemovalQuestion::onlyCount() const {
    return countOf(Status::missing) + countOf(Status::unknown);
}

bool RemovalQuestion::isConnected() const {
    return std::ranges::all_of(items_, [&](const Item& item) {
        const ArchiveLocation* location = model_.library().location(item.entry.locationRootPath);
        return location == nullptr || location->isConnected;
    });
}

bool RemovalQuestion::canAccept() const {
    return step_ == Step::Asking && isConnected() && (onlyCount() == 0 || isTicked_);
}

const RemovalQuestion::Item* RemovalQuestion::itemOf(const std::string& entryID) const {
    const auto found =
        std::ranges::find_if(items_, [&](const Item& item) { return item.entry.id() == entryID; });
    return found == items_.end() ? nullptr : &*found;
}

QString RemovalQuestion::title() const {
    if (step_ != Step::Failed)
        return QStringLiteral("从归档里删除 %1 封邮件？").arg(screens::shownCount(count()));
    const auto& end = *model_.removal().lastEnd();
    return QStringLiteral("删除了 %1 封，%2 封没有删掉")
        .arg(screens::shownCount(std::ssize(end.removedIDs)), screens::shownCount(std::ssize(end.failures)));
}

QString RemovalQuestion::line() const {
    if (step_ == Step::Failed) return QStringLiteral("没有删掉的仍在归档库里。原因见下面。");
    std::int64_t bytes = 0;
    std::set<std::string> roots;
    for (const Item& item : items_) {
        bytes += item.entry.record.sizeBytes;
        roots.insert(item.entry.locationRootPath.str());
    }
    QStringList places;
    for (const std::string& root : roots)
        places += u'「' + placeOf(root, model_.library().location(root)) + u'」';
    return QStringLiteral("%1 封，共 %2，在%3里。Mail 里的邮件不会改动。")
        .arg(screens::shownCount(count()), sizeText(bytes), places.join(u'、'));
}

QVariantList RemovalQuestion::items() const {
    QVariantList shown;
    for (const Item& item : items_) {
        if (std::cmp_equal(shown.size(), mostItemsShown)) break;
        const ArchivedEmailRecord& record = item.entry.record;
        shown.append(QVariantMap{
            {QStringLiteral("subject"), screens::shownLine(record.subject)},
            {QStringLiteral("sender"), screens::shownSender(record.sender)},
            {QStringLiteral("dateText"),
             record.date ? screens::wholeText(formatListDate(*record.date)) : QString()},
            {QStringLiteral("sizeText"), sizeText(record.sizeBytes)},
            {QStringLiteral("state"), stateOf(item.status)},
            {QStringLiteral("only"), item.status != Status::present},
        });
    }
    return shown;
}

int RemovalQuestion::itemsLeftOut() const {
    return std::max(0, count() - static_cast<int>(mostItemsShown));
}

QString RemovalQuestion::onlyTitle() const {
    const std::int64_t gone = countOf(Status::missing);
    const std::int64_t unchecked = countOf(Status::unknown);
    if (gone > 0) return QStringLiteral("%1 封已不在 Mail 里，这是唯一的一份").arg(screens::shownCount(gone));
    if (unchecked > 0)
        return QStringLiteral("%1 封没有对照过 Mail，也可能是唯一的一份").arg(screens::shownCount(unchecked));
    return {};
}

QString RemovalQuestion::onlyText() const {
    const std::int64_t unchecked = countOf(Status::unknown);
    if (countOf(Status::missing) > 0 && unchecked > 0)
        return QStringLiteral("另有 %1 封没有对照过 Mail，也可能是唯一的一份。删除之后，哪里都找不回来。")
            .arg(screens::shownCount(unchecked));
    return QStringLiteral("删除之后，哪里都找不回来。");
}

QString RemovalQuestion::onlyTick() const {
    return QStringLiteral("我知道，这 %1 封也要删除").arg(screens::shownCount(onlyCount()));
}

QString RemovalQuestion::note() const {
    if (step_ == Step::Removing) return QStringLiteral("正在删除 %1 封…").arg(screens::shownCount(count()));
    if (!isConnected()) return QStringLiteral("归档位置没有连接");
    return onlyCount() > 0 && !isTicked_ ? QStringLiteral("勾选之后才能删除") : QString();
}

QVariantList RemovalQuestion::figures() const {
    const auto& end = model_.removal().lastEnd();
    if (step_ != Step::Failed || !end) return {};
    std::int64_t failedBytes = 0;
    std::int64_t bytes = 0;
    for (const Item& item : items_) bytes += item.entry.record.sizeBytes;
    for (const auto& failure : end->failures) {
        if (const Item* item = itemOf(failure.entryID)) failedBytes += item->entry.record.sizeBytes;
    }
    const auto figure = [](const char16_t* label, std::int64_t number, const QString& line,
                           const char16_t* tone) {
        return QVariantMap{{QStringLiteral("label"), QString::fromUtf16(label)},
                           {QStringLiteral("count"), screens::shownCount(number)},
                           {QStringLiteral("line"), line},
                           {QStringLiteral("tone"), QString::fromUtf16(tone)}};
    };
    return {figure(u"已删除", std::ssize(end->removedIDs), sizeText(bytes - failedBytes), u""),
            figure(u"没有删掉", std::ssize(end->failures), sizeText(failedBytes), u"danger"),
            figure(u"合计", count(), QStringLiteral("与所选封数一致"), u"")};
}

QVariantList RemovalQuestion::failures() const {
    QVariantList shown;
    const auto& end = model_.removal().lastEnd();
    if (step_ != Step::Failed || !end) return shown;
    for (const auto& failure : end->failures) {
        const Item* item = itemOf(failure.entryID);
        if (item == nullptr || std::cmp_equal(shown.size(), mostItemsShown)) continue;
        shown.append(QVariantMap{
            {QStringLiteral("subject"), screens::shownLine(item->entry.record.subject)},
            {QStringLiteral("sizeText"), sizeText(item->entry.record.sizeBytes)},
            {QStringLiteral("reason"), screens::shownLine(failure.reason)},
        });
    }
    return shown;
}

QString RemovalQuestion::failureLines() const {
    QStringList lines;
    const auto& end = model_.removal().lastEnd();
    if (!end) return {};
    for (const auto& failure : end->failures) {
        const Item* item = itemOf(failure.entryID);
        lines += (item == nullptr ? QString() : screens::wholeText(item->entry.record.subject)) + u'\t' +
                 screens::wholeText(failure.reason);
    }
    return lines.join(u'\n');
}

} // namespace corvane
