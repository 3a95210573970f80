#include <vector>

#include <gtest/gtest.h>

#include "model/model_test.h"
#include "screens/archive/archive_texts.h"
#include "screens/home/safety_banner.h"
#include "screens/texts/destination_texts.h"
#include "screens/texts/shown_figures.h"

namespace corvane {
namespace {

const QString all = QStringLiteral("全部年份");

TEST(SafetyBanners, NothingIsSafeBeforeEveryLocalMessageHasACopy) {
    struct Case {
        DeletionSafety safety;
        const char* kind;
        const char* headline;
        std::vector<const char*> lines;
    };

    const Case cases[] = {
        {{36195, 23789, 3127},
         "attention",
         "全部年份：已完成归档 23,789 封，未归档 12,406 封",
         {"先完成剩余邮件归档，再处理 Mail 原件。",
          "3,127 封仅在服务器上；按日期段删除会同步删除服务器邮件。"}},
        {{5, 5, 0},
         "safe",
         "全部年份：已完成归档 5 封，未归档 0 封",
         {"本地原件都有 .eml 副本；确认后应通过 Apple Mail 移到废纸篓。"}},
        {{0, 0, 0},
         "info",
         "全部年份：已完成归档 0 封，未归档 0 封",
         {"当前筛选里没有本地下载邮件需要处理。"}},
        {{0, 0, 9},
         "info",
         "全部年份：已完成归档 0 封，未归档 0 封",
         {"当前筛选里没有本地下载邮件需要处理。", "9 封仅在服务器上；按日期段删除会同步删除服务器邮件。"}},
    };
    for (const Case& example : cases) {
        const SafetyBanner banner = screens::deletionSafetyBanner(all, example.safety);
        EXPECT_EQ(banner.kind, QString::fromUtf8(example.kind));
        EXPECT_EQ(banner.headline, QString::fromUtf8(example.headline));
        QStringList lines;
        for (const char* line : example.lines) lines << QString::fromUtf8(line);
        EXPECT_EQ(banner.lines, lines);
    }
}

class DestinationTexts : public testing::ModelTest {
  protected:
    [[nodiscard]] DestinationView view() const { return {path_, facts_, platform_}; }

    std::optional<std::string> path_;
    DestinationFacts facts_;
};

TEST_F(DestinationTexts, ThePlaceHasTheNameByWhichPeopleKnowIt) {
    EXPECT_EQ(screens::destinationName(view()), QStringLiteral("尚未设置"));
    path_ = home_.at("Library/Mobile Documents/com~apple~CloudDocs/邮件归档");
    EXPECT_EQ(screens::destinationName(view()), QStringLiteral("iCloud 云盘"));
    path_ = home_.at("Volumes/归档盘 A/邮件/旧");
    EXPECT_EQ(screens::destinationName(view()), QStringLiteral("U 盘 · 归档盘 A"));
    EXPECT_EQ(screens::destinationSymbol(view()), QStringLiteral("externaldrive"));
    facts_.connected = false;
    EXPECT_EQ(screens::destinationSymbol(view()), QStringLiteral("externaldrive.badge.questionmark"));
    path_ = home_.at("Documents/邮件归档");
    EXPECT_EQ(screens::destinationName(view()), QStringLiteral("邮件归档"));
    facts_.cloudName = "坚果云";
    EXPECT_EQ(screens::destinationPlace(view()), QStringLiteral("坚果云 · 邮件归档"));
}

TEST_F(DestinationTexts, TheFirstRemarkThatFitsIsMade) {
    EXPECT_EQ(screens::archiveRemark(view()).title, QStringLiteral("尚未设置归档位置"));
    EXPECT_EQ(screens::locationBarRemark(view()), DestinationRemark());

    path_ = home_.at("Volumes/盘/邮件");
    EXPECT_EQ(screens::archiveRemark(view()), DestinationRemark()) << "an external disk is what is wanted";
    facts_.connected = false;
    facts_.onInternalDisk = true;
    EXPECT_EQ(screens::archiveRemark(view()).title, QStringLiteral("归档位置当前不可用"));
    EXPECT_TRUE(screens::archiveRemark(view()).text.contains(QStringLiteral("请插入该盘")));

    path_ = home_.at("Documents/邮件");
    EXPECT_FALSE(screens::archiveRemark(view()).text.contains(QStringLiteral("盘上")));
    facts_.connected = true;
    EXPECT_TRUE(screens::archiveRemark(view()).text.startsWith(QStringLiteral("这是本机磁盘上的普通文件夹")));
    EXPECT_TRUE(screens::locationBarRemark(view()).text.startsWith(QStringLiteral("这是本机文件夹")));

    facts_.cloudName = "坚果云";
    EXPECT_EQ(screens::archiveRemark(view()), DestinationRemark()) << "a cloud folder saves room";
    facts_.inSymlinkContainer = true;
    EXPECT_TRUE(screens::archiveRemark(view()).text.contains(QStringLiteral(".symlinks")));
}

TEST_F(DestinationTexts, TheButtonSaysWhatIsMissing) {
    EXPECT_EQ(screens::archiveButtonTitle(view(), 5), QStringLiteral("先选择位置"));
    path_ = home_.at("x");
    facts_.connected = false;
    EXPECT_EQ(screens::archiveButtonTitle(view(), 5), QStringLiteral("位置不可用"));
    facts_.connected = true;
    EXPECT_EQ(screens::archiveButtonTitle(view(), 5), QStringLiteral("开始归档"));
    EXPECT_EQ(screens::archiveButtonTitle(view(), 0), QStringLiteral("选择邮件后归档"));
}

TEST(ArchiveTexts, AnEmptyListSaysWhy) {
    const auto text = [](const DeletionSafety& safety) {
        return screens::archiveEmptyDescription(all, safety);
    };
    EXPECT_EQ(text({0, 0, 3}), QStringLiteral("全部年份 有 3 封仅在服务器上，本机未下载，当前无法归档。"));
    EXPECT_EQ(text({4, 4, 3}),
              QStringLiteral("全部年份 共有 4 封本地邮件，已归档 4 封，所以不会重复出现在候选列表。"));
    EXPECT_EQ(text({4, 1, 0}),
              QStringLiteral("全部年份 本地 4 封，已归档 1 封；其余邮件可能被体积阈值过滤。"));
    EXPECT_EQ(text({4, 0, 0}), QStringLiteral("调整年份范围或降低体积阈值；已归档的邮件不会重复出现。"));
    EXPECT_EQ(text({0, 0, 0}), text({4, 0, 0}));
    EXPECT_EQ(screens::archiveEmptyTitle({4, 4, 0}), QStringLiteral("当前范围已全部归档"));
    EXPECT_EQ(screens::archiveEmptyTitle({0, 0, 0}), QStringLiteral("没有可归档的邮件"));
}

TEST(ArchiveTexts, YearsAreNamedWhileTheyAreFew) {
    EXPECT_EQ(screens::archiveScopeTitle({}), all);
    EXPECT_EQ(screens::archiveScopeTitle({2018, 2019, 2020}), QStringLiteral("2018 年、2019 年、2020 年"));
    EXPECT_EQ(screens::archiveScopeTitle({2016, 2017, 2018, 2019, 2020}),
              QStringLiteral("2016 年至 2020 年"));
    EXPECT_EQ(screens::archiveScopeTitle({2010, 2017, 2018, 2019, 2020}),
              QStringLiteral("2010 年等 5 个年份"));
}

TEST(ArchiveTexts, SpaceIsToldWithItsMargin) {
    EXPECT_EQ(screens::archiveSpaceText(461'100'000, 96'300'000'000),
              QStringLiteral("约需 530.3 MB，可用 96.3 GB"));
    EXPECT_EQ(screens::archiveSpaceText(461'100'000, std::nullopt), QStringLiteral("约需 530.3 MB"));
    EXPECT_EQ(screens::archiveSpaceText(2'000'000, 1'000'000),
              QStringLiteral("约需 2.3 MB，可用 1 MB，空间不足"));
}

TEST(Figures, AreGroupedAndShort) {
    EXPECT_EQ(screens::shownCount(12406), QStringLiteral("12,406"));
    EXPECT_EQ(screens::shownSize(0), QStringLiteral("—"));
    EXPECT_EQ(screens::shownDuration(42), QStringLiteral("0:42"));
    EXPECT_EQ(screens::shownDuration(3729), QStringLiteral("1:02:09"));
    const QString home = QStringLiteral("/home/lin");
    EXPECT_EQ(screens::shownPath(QStringLiteral("/home/lin/Documents/邮件"), home),
              QStringLiteral("~/Documents/邮件"));
    EXPECT_EQ(screens::shownPath(QStringLiteral("/home/linda"), home), QStringLiteral("/home/linda"));
}

} // namespace
} // namespace corvane
