#include "screens/texts/destination_texts.h"

#include <optional>
#include <string>

#include "model/model_test.h"
#include "screens/archive/archive_texts.h"
#include "screens/texts/shown_figures.h"

namespace corvane {
namespace {

class DestinationTexts : public testing::ModelTest {
  protected:
    [[nodiscard]] DestinationView view() const { return {path_, facts_, platform_}; }

    std::optional<std::string> path_;
    DestinationFacts facts_;
};

TEST_F(DestinationTexts, ThePlaceHasTheNameByWhichPeopleKnowIt) {
    path_ = home_.at("Library/Mobile Documents/com~apple~CloudDocs/邮件归档");
    EXPECT_EQ(screens::destinationName(view()), QStringLiteral("iCloud 云盘"));
    path_ = home_.at("Volumes/归档盘 A/邮件/旧");
    EXPECT_EQ(screens::destinationName(view()), QStringLiteral("U 盘 · 归档盘 A"));
    path_ = home_.at("Documents/邮件归档");
    EXPECT_EQ(screens::destinationName(view()), QStringLiteral("邮件归档"));
    facts_.cloudName = "坚果云";
    EXPECT_EQ(screens::destinationPlace(view()), QStringLiteral("坚果云 · 邮件归档"));
}

TEST_F(DestinationTexts, TheFirstThatIsWrongIsSaidAndStopsTheRun) {
    struct Case {
        std::optional<std::string> path;
        DestinationFacts facts;
        const char* remark; // its kind
        const char* word;   // by which the remark is known
        bool isReady;
    };

    DestinationFacts away;
    away.connected = false;
    away.onInternalDisk = true;
    DestinationFacts internal;
    internal.onInternalDisk = true;
    DestinationFacts cloud = internal;
    cloud.cloudName = "坚果云";
    DestinationFacts link = cloud;
    link.inSymlinkContainer = true;
    const std::string disk = home_.at("Volumes/盘/邮件");
    const std::string folder = home_.at("Documents/邮件");
    const QString ready = screens::archiveButtonTitle({folder, {}, platform_}, 1);
    for (const Case& test :
         {Case{std::nullopt, {}, "attention", "尚未设置", false}, Case{disk, {}, "", "", true},
          Case{disk, away, "danger", "插入", false}, Case{folder, away, "danger", "找不到", false},
          Case{folder, internal, "attention", "本机", true}, Case{folder, cloud, "", "", true},
          Case{folder, link, "attention", ".symlinks", true}}) {
        path_ = test.path;
        facts_ = test.facts;
        const DestinationRemark remark = screens::archiveRemark(view());
        EXPECT_EQ(remark.kind.toStdString(), test.remark) << test.word;
        EXPECT_TRUE((remark.title + remark.text).contains(QString::fromUtf8(test.word))) << test.word;
        EXPECT_EQ(screens::archiveButtonTitle(view(), 1) == ready, test.isReady) << test.word;
        // The home's bar asks for a place by itself.
        const QString barKind = screens::locationBarRemark(view()).kind;
        EXPECT_EQ(barKind, test.path ? remark.kind : QString()) << test.word;
    }
    EXPECT_NE(screens::archiveButtonTitle(view(), 0), ready) << "nothing is chosen";
}

TEST(Figures, AreGroupedAndShort) {
    EXPECT_EQ(screens::shownCount(12406), QStringLiteral("12,406"));
    EXPECT_EQ(screens::shownSize(0), QStringLiteral("—"));
    EXPECT_EQ(screens::shownDuration(42), QStringLiteral("0:42"));
    EXPECT_EQ(screens::shownDuration(3729), QStringLiteral("1:02:09"));
    const QString home = QStringLiteral("/home/lin");
    EXPECT_EQ(screens::shownPath(QStringLiteral("/home/lin/邮件"), home), QStringLiteral("~/邮件"));
    EXPECT_EQ(screens::shownPath(QStringLiteral("/home/linda"), home), QStringLiteral("/home/linda"));
}

} // namespace
} // namespace corvane
