#include "screens/archived/account/account_detail.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <QPointer>
#include <QStringList>

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using Status = ArchivedOverviewRowStatus;
using Years = std::vector<std::int64_t>;

template <class Holds>
Years yearsThat(const ArchivedOverviewGroup& group, const ArchivedOverviewStats::Group& stats,
                const Holds& holds) {
    Years years;
    for (std::size_t number = 0; number < group.years.size(); ++number) {
        if (holds(stats.years[number])) years.push_back(group.years[number].year);
    }
    return years;
}

void addSpans(QStringList& parts, const Years& years, const QString& text) {
    if (!years.empty()) parts += screens::yearSpans(years) + text;
}

// Years that are called cleanable and that no condition is given for.
std::map<std::string, Years> leftOutByReason(const ArchivedOverviewGroup& group,
                                             const ArchivedOverviewStats::Group& stats) {
    std::map<std::string, Years> years;
    for (std::size_t number = 0; number < group.years.size(); ++number) {
        const ArchivedOverviewStats::Year& year = stats.years[number];
        if (year.isLeftOut()) years[leftOutReason(year)].push_back(group.years[number].year);
    }
    return years;
}

QString yearsLine(const ArchivedOverviewGroup& group, const ArchivedOverviewStats::Group& stats) {
    const auto isBlocked = [](const ArchivedOverviewStats::Year& year) {
        return (year.status == Status::incomplete && !year.awaitsProof) ||
               year.status == Status::serverUnbacked;
    };
    const auto awaits = [](const ArchivedOverviewStats::Year& year) { return year.awaitsProof; };
    const auto isPending = [](const ArchivedOverviewStats::Year& year) {
        return year.status == Status::pendingReview;
    };
    QStringList parts;
    addSpans(parts, overviewCleanableYears(group, stats), QStringLiteral(" 年可以放心清理"));
    for (const auto& [reason, years] : leftOutByReason(group, stats))
        addSpans(parts, years, QStringLiteral(" 年没有列入步骤（%1）").arg(screens::wholeText(reason)));
    addSpans(parts, yearsThat(group, stats, awaits), QStringLiteral(" 年还没有核对"));
    addSpans(parts, yearsThat(group, stats, isBlocked), QStringLiteral(" 年还有邮件没有归档"));
    addSpans(parts, yearsThat(group, stats, isPending), QStringLiteral(" 年待确认"));
    if (parts.isEmpty()) return QStringLiteral("没有还留在 Mail 里的原件。");
    return parts.join(u'，') + u'。';
}

} // namespace

AccountDetail::AccountDetail(ArchivedMailOpening& opening, QObject* parent)
  : QObject(parent)
  , opening_(opening) {}

void AccountDetail::open(const std::string& key) {
    key_ = key;
    rows_.collapseAll();
    find();
}

void AccountDetail::close() {
    if (key_.empty() && group_ == nullptr) return;
    key_.clear();
    find();
}

void AccountDetail::show(SharedOverview overview, OriginalKnowledge knowledge) {
    overview_ = std::move(overview);
    knowledge_ = knowledge;
    find();
}

void AccountDetail::find() {
    std::tie(group_, stats_) = screens::groupOfKey(overview_, key_);
    rows_.show(isOpen() ? AccountRowsModel::Source{overview_, group_, stats_, knowledge_}
                        : AccountRowsModel::Source());
    Q_EMIT changed();
}

QString AccountDetail::title() const {
    return isOpen() ? screens::shownLine(group_->title) : QString();
}

QString AccountDetail::subtitle() const {
    if (!isOpen()) return {};
    return knowledge_ == OriginalKnowledge::known ? yearsLine(*group_, *stats_)
                                                  : QStringLiteral("对照 Mail 之后才知道哪些年份可以清理。");
}

QString AccountDetail::freeable() const {
    return hasGuide() ? screens::shownSize(stats_->freeable.bytes) : QString();
}

bool AccountDetail::hasGuide() const {
    return isOpen() && knowledge_ == OriginalKnowledge::known && stats_->freeable.count > 0;
}

QString AccountDetail::awaitingText() const {
    if (!isOpen() || knowledge_ != OriginalKnowledge::known) return {};
    const std::int64_t awaiting = screens::archivedShares(*group_, *stats_).awaiting.count;
    return awaiting > 0 ? screens::shownMessageCount(awaiting) : QString();
}

void AccountDetail::locateOriginal(int row) {
    const ArchivedEntry* entry = rows_.entryAt(row);
    if (entry == nullptr) return;
    opening_.locateOriginalInMail(
        entry->record, [detail = QPointer(this)](std::optional<OriginalFailure> failure) {
            if (detail && failure) Q_EMIT detail->failed(screens::wholeText(originalFailureText(*failure)));
        });
}

} // namespace corvane
