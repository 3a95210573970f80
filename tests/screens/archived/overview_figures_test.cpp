#include "screens/archived/figures/overview_figures.h"

#include <chrono>
#include <vector>

#include <gtest/gtest.h>

#include "screens/archived/figures/archived_accounts_model.h"
#include "screens/archived/overview_sample.h"

namespace corvane {
namespace {

using testing::sampleOverview;
using Known = OriginalKnowledge;
using Status = ArchivedOverviewRowStatus;

ArchivedShares sharesOfAll() {
    return screens::archivedShares(
        *sampleOverview({{.year = 2012, .freeable = {3, 30}, .removed = {1, 5}},
                         {.year = 2013,
                          .status = Status::incomplete,
                          .awaitsProof = true,
                          .unknown = {2, 2},
                          .rest = {4, 40}},
                         {.year = 2014, .status = Status::serverUnbacked, .rest = {5, 50}},
                         {.year = 2015, .status = Status::pendingReview, .unknown = {1, 1}, .rest = {2, 20}}},
                        {7, 70}));
}

TEST(OverviewFigures, EveryArchivedMailStandsInOnePartOfTheWhole) {
    const ArchivedShares shares = sharesOfAll();
    EXPECT_EQ(shares.freeable, (MailSum{3, 30}));
    EXPECT_EQ(shares.awaiting, (MailSum{4, 40}));
    EXPECT_EQ(shares.blocked, (MailSum{5, 50}));
    EXPECT_EQ(shares.removed, (MailSum{1, 5}));
    EXPECT_EQ(shares.pending, (MailSum{5, 23}));
    MailSum sum;
    for (const MailSum* part : {&shares.freeable, &shares.awaiting, &shares.blocked, &shares.removed,
                                &shares.pending, &shares.undated})
        sum += *part;
    EXPECT_EQ(sum, shares.total);
    EXPECT_EQ(screens::holdingParts(shares, true).size(), 6);
    for (const QVariant& part : screens::holdingParts(shares, false))
        EXPECT_EQ(part.toMap()[QStringLiteral("text")].toString(), QStringLiteral("—"));
}

TEST(OverviewFigures, NothingIsGreenBeforeItWasCheckedAndCompared) {
    const ArchivedShares all = sharesOfAll();
    ArchivedShares onlyAwaiting = all;
    onlyAwaiting.freeable = {};
    ArchivedShares done;
    done.total = done.removed = {9, 90};
    const Date day = std::chrono::sys_days(std::chrono::year(2025) / 11 / 20);

    struct Case {
        OverviewHeroInput input;
        const char* figure;
        const char* kind;
        const char* action;
        bool isDated = false;
    };

    const std::vector<Case> cases = {
        {{.knowledge = Known::unchecked, .shares = all}, "未检查", "", ""},
        {{.knowledge = Known::unavailable, .shares = all}, "未检查", "", ""},
        {{.knowledge = Known::checking, .shares = all, .checkedAt = day}, "—", "", ""},
        {{.knowledge = Known::scanning, .shares = all, .checkedAt = day}, "—", "", ""},
        {{.knowledge = Known::waiting, .shares = all, .checkedAt = day}, "—", "", ""},
        {{.knowledge = Known::noMail, .shares = all, .checkedAt = day}, "未检查", "", "update"},
        {{.knowledge = Known::partial, .shares = all, .checkedAt = day}, "未检查", "", "update"},
        {{.knowledge = Known::known, .shares = all, .checkedAt = day}, "1 KB", "safe", "prove", true},
        {{.knowledge = Known::known, .shares = all, .checkedAt = day, .isEarlierCheck = true},
         "1 KB",
         "",
         "prove",
         true},
        {{.knowledge = Known::known, .shares = onlyAwaiting, .checkedAt = day}, "待核对", "", "prove"},
        {{.knowledge = Known::known, .shares = done, .checkedAt = day}, "—", "", "", true},
    };
    for (const Case& each : cases) {
        const OverviewHero hero = screens::overviewHero(each.input);
        const auto number = &each - cases.data();
        EXPECT_EQ(hero.figure, QString::fromUtf8(each.figure)) << number;
        EXPECT_EQ(hero.kind, QString::fromUtf8(each.kind)) << number;
        EXPECT_EQ(hero.action, QString::fromUtf8(each.action)) << number;
        EXPECT_EQ(hero.note.contains(QStringLiteral("2025-11-20")), each.isDated) << number;
    }
    const QString away = QStringLiteral("2 封是 2020-01-01 的比对");
    for (const auto known : {Known::unchecked, Known::known}) {
        const OverviewHero hero = screens::overviewHero({.knowledge = known, .shares = all, .away = away});
        EXPECT_EQ(hero.note.endsWith(away), known == Known::known) << "it is part of what is claimed";
    }
    for (int known = 0; known < static_cast<int>(Known::known); ++known) {
        const YearStatus status = screens::yearStatus(static_cast<Known>(known), Status::cleanable, false);
        EXPECT_TRUE(status.tone.isEmpty() && status.key != u"cleanable") << known;
    }
}

TEST(OverviewFigures, TheFilterLeavesOutYearsAndWhatHasNone) {
    const SharedOverview overview =
        sampleOverview({{.year = 2010, .freeable = {1, 1}},
                        {.year = 2012, .status = Status::serverUnbacked, .rest = {1, 1}}});
    ArchivedAccountsModel model;
    const auto keys = [&] {
        QStringList list;
        if (const ArchivedAccount* account = model.record(0)) {
            for (const QVariant& cell : account->cells)
                list += cell.toMap()[QStringLiteral("key")].toString();
        }
        return list.join(u'|');
    };
    model.show(*overview, Known::known, ArchivedOverviewFilter::all);
    EXPECT_EQ(keys(), QStringLiteral("cleanable||server"));
    model.show(*overview, Known::known, ArchivedOverviewFilter::cleanable);
    EXPECT_EQ(keys(), QStringLiteral("cleanable||"));
    model.show(*overview, Known::known, ArchivedOverviewFilter::removed);
    EXPECT_EQ(model.count(), 0);
    model.show(*overview, Known::checking, ArchivedOverviewFilter::removed);
    EXPECT_EQ(keys(), QStringLiteral("checking||checking"));

    const SharedOverview partlyGone = sampleOverview({{.year = 2010, .isPartlyGone = true, .rest = {1, 1}}});
    model.show(*partlyGone, Known::known, ArchivedOverviewFilter::all);
    EXPECT_EQ(keys(), QStringLiteral("pending")) << "it frees nothing";
    model.show(*partlyGone, Known::known, ArchivedOverviewFilter::cleanable);
    EXPECT_EQ(model.count(), 0);
}

TEST(OverviewFigures, YearsAreSaidAsSpans) {
    EXPECT_EQ(screens::yearSpans(std::vector<std::int64_t>{2012, 2013, 2014, 2016}),
              QStringLiteral("2012 – 2014、2016"));
    EXPECT_EQ(screens::yearSpans(std::vector<std::int64_t>{1, 3, 5, 7, 9}),
              QStringLiteral("1、3、5、7 等 5 个"));
}

} // namespace
} // namespace corvane
