#include "screens/archived/figures/overview_figures.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <QVariantMap>

#include "records/texts/formatters.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane::screens {

namespace {

void add(ArchivedShares& shares, const ArchivedOverviewGroup::YearGroup& year,
         const ArchivedOverviewStats::Year& stats) {
    MailSum others = stats.freeable;
    for (const MailSum* sum : {&stats.repeated, &stats.removed, &stats.unknown}) others += *sum;
    const MailSum present{year.count - others.count, year.bytes - others.bytes};
    shares.freeable += stats.freeable;
    shares.repeated += stats.repeated;
    shares.removed += stats.removed;
    shares.pending += stats.unknown;
    if (stats.awaitsProof) {
        shares.awaiting += present;
    } else if (stats.status == ArchivedOverviewRowStatus::pendingReview ||
               stats.status == ArchivedOverviewRowStatus::cleanable) {
        shares.pending += present;
    } else {
        shares.blocked += present;
    }
}

OverviewHero unknownHero(const QString& figure, const QString& line) {
    OverviewHero hero;
    hero.symbol = QStringLiteral("search");
    hero.title = QStringLiteral("可释放空间");
    hero.figure = figure;
    hero.line = line;
    return hero;
}

OverviewHero withAction(OverviewHero hero, const char16_t* action, const char16_t* title) {
    hero.action = QString::fromUtf16(action);
    hero.actionTitle = QString::fromUtf16(title);
    return hero;
}

OverviewHero uncheckedHero(const QString& failure) {
    OverviewHero hero =
        unknownHero(QStringLiteral("未检查"),
                    QStringLiteral("点右上角「重新检查」对照 Mail 后，这里显示可以安全删除、释放的空间。"));
    hero.note = failure;
    if (!failure.isEmpty()) hero.symbol = QStringLiteral("triangle-alert");
    return hero;
}

OverviewHero withoutKnowledge(const OverviewHeroInput& input) {
    const QString none = QStringLiteral("—");
    switch (input.knowledge) {
    case OriginalKnowledge::unavailable:
    case OriginalKnowledge::unchecked:
        return uncheckedHero(input.failure);
    case OriginalKnowledge::checking:
        return unknownHero(none, QStringLiteral("正在对照 Mail 中的原件状态"));
    case OriginalKnowledge::scanning:
        return unknownHero(none, QStringLiteral("正在更新 Mail 数据，完成后显示可以释放的空间。"));
    case OriginalKnowledge::noMail:
        return withAction(unknownHero(QStringLiteral("未检查"),
                                      QStringLiteral("先更新 Mail 数据，才知道同年的邮件是否都已归档。")),
                          u"update", u"更新 Mail 数据");
    case OriginalKnowledge::partial:
        return withAction(unknownHero(QStringLiteral("未检查"),
                                      QStringLiteral("上次没有把邮件全部读完，还不能判断哪些原件可以删除。")),
                          u"update", u"继续更新");
    default:
        return unknownHero(none, QStringLiteral("正在确认哪些原件可以从 Mail 里删除。"));
    }
}

OverviewHero freeableHero(const OverviewHeroInput& input) {
    OverviewHero hero;
    hero.title = QStringLiteral("可释放空间");
    hero.kind = input.isEarlierCheck ? QString() : QStringLiteral("safe");
    hero.symbol = input.isEarlierCheck ? QStringLiteral("search") : QStringLiteral("shield-check");
    hero.figure = shownSize(input.shares.freeable.bytes);
    hero.count = shownMessageCount(input.shares.freeable.count);
    hero.line = QStringLiteral("这些邮件都已备份好，从 Mail 里删掉也不会丢。");
    if (!input.failure.isEmpty()) hero.symbol = QStringLiteral("triangle-alert");
    hero.note = !input.failure.isEmpty() ? checkedText(input.checkedAt) + u'。' + input.failure
                : input.isEarlierCheck   ? checkedText(input.checkedAt) + QStringLiteral("，删除前请重新检查")
                                         : QStringLiteral("已逐字节核对 · 对照 ") +
                                             wholeText(formatListDate(input.checkedAt.value_or(Date())));
    return hero;
}

QVariantMap part(const char* series, const QString& label, const MailSum& sum, bool isKnown) {
    const QString none = QStringLiteral("—");
    return {{QStringLiteral("series"), QString::fromLatin1(series)},
            {QStringLiteral("label"), label},
            {QStringLiteral("value"), isKnown ? static_cast<double>(sum.bytes) : 0.0},
            {QStringLiteral("text"), isKnown ? shownMessageCount(sum.count) : none},
            {QStringLiteral("size"), isKnown ? shownSize(sum.bytes) : none}};
}

} // namespace

ArchivedShares archivedShares(const ArchivedOverviewGroup& group, const ArchivedOverviewStats::Group& stats) {
    ArchivedShares shares;
    shares.total = {group.count, group.bytes};
    shares.undated = group.undated;
    for (std::size_t year = 0; year < group.years.size(); ++year)
        add(shares, group.years[year], stats.years[year]);
    return shares;
}

ArchivedShares archivedShares(const ArchivedOverview& overview) {
    ArchivedShares all;
    for (std::size_t number = 0; number < overview.groups->size(); ++number) {
        const ArchivedShares one = archivedShares((*overview.groups)[number], overview.stats.groups[number]);
        all.total += one.total;
        all.freeable += one.freeable;
        all.awaiting += one.awaiting;
        all.blocked += one.blocked;
        all.removed += one.removed;
        all.pending += one.pending;
        all.undated += one.undated;
        all.repeated += one.repeated;
    }
    return all;
}

std::pair<const ArchivedOverviewGroup*, const ArchivedOverviewStats::Group*>
groupOfKey(const SharedOverview& overview, const std::string& key) {
    if (!overview) return {};
    const auto found = std::ranges::find(*overview->groups, key, &ArchivedOverviewGroup::key);
    if (found == overview->groups->end()) return {};
    const auto number = static_cast<std::size_t>(found - overview->groups->begin());
    return {&*found, &overview->stats.groups[number]};
}

OverviewHero overviewHero(const OverviewHeroInput& input) {
    if (input.knowledge != OriginalKnowledge::known) return withoutKnowledge(input);
    const MailSum& awaiting = input.shares.awaiting;
    const QString awaitingText =
        QStringLiteral("%1已归档、原件仍在 Mail，").arg(shownMessageCount(awaiting.count));
    OverviewHero hero;
    if (input.shares.freeable.count > 0) {
        hero = freeableHero(input);
        if (awaiting.count > 0)
            hero.line =
                QStringLiteral("还有 %1待核对，核对前不计入。").arg(shownMessageCount(awaiting.count));
    } else if (awaiting.count > 0) {
        hero = unknownHero(QStringLiteral("待核对"),
                           awaitingText +
                               QStringLiteral("与归档副本逐字节核对后，这里显示可以安全删除的空间。"));
    } else {
        hero = unknownHero(QStringLiteral("—"), QStringLiteral("现在没有可以从 Mail 里删除的邮件。"));
        hero.note = checkedText(input.checkedAt);
    }
    if (!input.away.isEmpty())
        hero.note += (hero.note.isEmpty() ? QString() : QStringLiteral("\n")) + input.away;
    return awaiting.count > 0 ? withAction(std::move(hero), u"prove", u"开始核对") : hero;
}

QVariantList holdingParts(const ArchivedShares& shares, bool isKnown) {
    QVariantList parts = {part("archived", QStringLiteral("可释放"), shares.freeable, isKnown),
                          part("unarchived", QStringLiteral("同年还有未归档"), shares.blocked, isKnown),
                          part("serverOnly", QStringLiteral("已从 Mail 删除"), shares.removed, isKnown),
                          part("share2", QStringLiteral("待确认"), shares.pending, isKnown)};
    if (isKnown && shares.awaiting.count > 0)
        parts.insert(1, part("share4", QStringLiteral("待核对"), shares.awaiting, true));
    if (isKnown && shares.repeated.count > 0)
        parts.insert(1, part("share1", QStringLiteral("另一处归档里也有"), shares.repeated, true));
    if (isKnown && shares.undated.count > 0)
        parts += part("share3", screens::undatedTitle(), shares.undated, true);
    return parts;
}

QString checkedText(const std::optional<Date>& checkedAt) {
    return checkedAt ? QStringLiteral("上次对照 ") + wholeText(formatListDate(*checkedAt)) : QString();
}

} // namespace corvane::screens
