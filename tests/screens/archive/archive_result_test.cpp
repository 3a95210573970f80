#include "screens/archive/archive_result.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

EmailArchiveFailure failure(const std::string& subject, const std::string& reason) {
    return {Uuid::random(), subject, FileURL("/m/" + subject + ".emlx"), reason};
}

TEST(ArchiveResults, EveryMessageCountsOnceAndTheSumIsWhatWasChosen) {
    struct Case {
        const char* what;
        std::int64_t archived, skipped, failed, tried, chosen;
        ArchiveResultFigures expected;
    };

    const Case cases[] = {
        {"plain", 1136, 21, 6, 1163, 1163, {1163, 1136, 21, 6, 0, 0}},
        {"two messages of two and three versions", 5, 0, 0, 2, 2, {2, 2, 0, 0, 0, 3}},
        {"versions that an earlier run has written", 0, 3, 0, 2, 2, {2, 0, 2, 0, 0, 1}},
        {"a version before its message failed", 1, 0, 1, 1, 1, {1, 0, 0, 1, 0, 1}},
        {"cancelled", 10, 2, 1, 13, 100, {100, 10, 2, 1, 87, 0}},
        {"cancelled before the first", 0, 0, 0, 0, 7, {7, 0, 0, 0, 7, 0}},
        {"one version written, one there already", 1, 1, 0, 1, 1, {1, 0, 1, 0, 0, 1}},
    };
    for (const Case& example : cases) {
        EmailArchiveRunResult result;
        result.archivedCount = example.archived;
        result.skippedAlreadyArchived = example.skipped;
        result.failedCount = example.failed;
        result.triedCount = example.tried;
        const auto figures = ArchiveResultFigures::of(result, example.chosen);
        EXPECT_EQ(figures, example.expected) << example.what;
        EXPECT_EQ(figures.archived + figures.skipped + figures.failed + figures.notTried, figures.chosen)
            << example.what;
    }
}

TEST(ArchiveResults, OnlyARunWithoutIssuesIsCalledSafeAndOnlyCopiesAreSpokenOf) {
    struct Case {
        const char* what;
        std::int64_t archived, skipped, chosen;
        bool cancelled, hasVariants, hasWarnings, isSafe, hasCopies;
    };

    for (const Case& test : {Case{"all", 3, 0, 3, false, false, false, true, true},
                             Case{"cancelled half way", 3, 0, 5, true, false, false, false, true},
                             Case{"several versions", 3, 0, 3, false, true, false, false, true},
                             Case{"an index set aside", 1, 0, 1, false, false, true, false, true},
                             Case{"there already, then cancelled", 0, 1, 5, true, false, false, false, true},
                             Case{"cancelled before the first", 0, 0, 5, true, false, false, false, false}}) {
        EmailArchiveRunResult result;
        result.archivedCount = test.archived;
        result.skippedAlreadyArchived = test.skipped;
        result.triedCount = test.archived + test.skipped;
        result.wasCancelled = test.cancelled;
        if (test.hasVariants) result.variantWarnings = {"a"};
        if (test.hasWarnings) result.archiveWarnings = {"原有索引无法读取"};
        const auto view = ArchiveResultView::of(result, test.chosen);
        EXPECT_EQ(view.isSafe, test.isSafe) << test.what;
        EXPECT_EQ(view.tiles.size(), 2 + (test.skipped > 0 ? 1 : 0) + (test.cancelled ? 1 : 0)) << "no zeros";
        EXPECT_EQ(view.restTitle.isEmpty(), !test.cancelled) << test.what;
        EXPECT_EQ(view.variantTitle.isEmpty(), !test.hasVariants) << test.what;
        EXPECT_EQ(view.warnings.isEmpty(), !test.hasWarnings) << test.what;
        EXPECT_EQ(view.note.isEmpty(), !test.hasCopies) << test.what;
        EXPECT_EQ(view.subtitle.contains(QStringLiteral(".eml")), test.hasCopies) << test.what;
        EXPECT_TRUE(view.failureTitle.isEmpty() && view.retryTitle.isEmpty()) << test.what;
    }
}

TEST(ArchiveResults, FailuresStandTogetherByReasonInTheOrderInWhichTheyCame) {
    EmailArchiveRunResult result;
    for (int number = 0; number < 30; ++number)
        result.failures.push_back(failure("s" + std::to_string(number), number % 3 == 0 ? "乙" : "甲"));
    result.failures.push_back(failure("换\n行\tund", "甲"));
    result.failedCount = 31;
    result.triedCount = 31;
    const auto view = ArchiveResultView::of(result, 31);
    ASSERT_EQ(view.failureGroups.size(), 2);
    const QVariantMap first = view.failureGroups[0].toMap();
    EXPECT_EQ(first[QStringLiteral("reason")].toString(), QStringLiteral("乙"));
    EXPECT_EQ(first[QStringLiteral("subjects")].toStringList().size(), 10);
    const QVariantMap second = view.failureGroups[1].toMap();
    EXPECT_EQ(second[QStringLiteral("count")].toString(), QStringLiteral("21"));
    EXPECT_EQ(second[QStringLiteral("subjects")].toStringList().size(), 20);
    EXPECT_TRUE(second[QStringLiteral("more")].toString().contains(QStringLiteral("另有 1 封")));

    const QString list = screens::failureList(result.failures);
    EXPECT_EQ(list.count(u'\n'), 31) << "one line each, whatever stands in a subject";
}

TEST(ArchiveResults, VersionsThatArentListedAreInTheCopiedList) {
    EmailArchiveRunResult result;
    for (int number = 0; number < 25; ++number)
        result.variantWarnings.push_back("两个\n版本 " + std::to_string(number));
    const auto view = ArchiveResultView::of(result, 25);
    EXPECT_EQ(view.variants.size(), 21);
    EXPECT_TRUE(view.variants.last().contains(QStringLiteral("另有 5 封")));
    EXPECT_EQ(screens::variantList(result.variantWarnings).count(u'\n'), 25);
}

} // namespace
} // namespace corvane
