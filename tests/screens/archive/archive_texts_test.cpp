#include "screens/archive/archive_texts.h"

#include <utility>

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(ArchiveTexts, AnEmptyListIsCalledArchivedOnlyWhereAllOfItIs) {
    for (const auto& [safety, isArchived] :
         {std::pair(DeletionSafety{4, 4, 0}, true), std::pair(DeletionSafety{0, 0, 0}, false),
          std::pair(DeletionSafety{4, 3, 0}, false)})
        EXPECT_EQ(screens::archiveEmptyTitle(safety).contains(QStringLiteral("已全部归档")), isArchived);
    EXPECT_TRUE(
        screens::archiveEmptyDescription(QString(), {0, 0, 3}).contains(QStringLiteral("仅在服务器")));
}

TEST(ArchiveTexts, YearsAreNamedWhileTheyAreFew) {
    EXPECT_EQ(screens::archiveScopeTitle({2018, 2019, 2020}), QStringLiteral("2018 年、2019 年、2020 年"));
    EXPECT_EQ(screens::archiveScopeTitle({2016, 2017, 2018, 2019, 2020}),
              QStringLiteral("2016 年至 2020 年"));
    EXPECT_EQ(screens::archiveScopeTitle({2010, 2017, 2018, 2019, 2020}),
              QStringLiteral("2010 年等 5 个年份"));
}

TEST(ArchiveTexts, SpaceIsCountedWithItsMargin) {
    EXPECT_EQ(screens::archiveSpaceText(461'100'000, 96'300'000'000),
              QStringLiteral("约需 530.3 MB，可用 96.3 GB"));
    EXPECT_EQ(screens::archiveSpaceText(461'100'000, std::nullopt), QStringLiteral("约需 530.3 MB"));
    EXPECT_TRUE(screens::isSpaceShort(2'000'000, 2'000'000));
    EXPECT_FALSE(screens::isSpaceShort(2'000'000, std::nullopt));
}

} // namespace
} // namespace corvane
