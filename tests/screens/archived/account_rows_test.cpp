// The account's sheet and the guide over one overview after another.
#include <string>

#include <QSignalSpy>

#include "model/model_test.h"
#include "screens/archived/account/account_detail.h"
#include "screens/archived/guide/deletion_guide.h"
#include "screens/archived/overview_sample.h"
#include "screens/support/recording_desktop.h"

namespace corvane {
namespace {

using testing::ModelTest;
using testing::sampleOverview;
using testing::waitUntilIdle;
using Known = OriginalKnowledge;
using Status = ArchivedOverviewRowStatus;

class ArchivedAccounts : public ModelTest {
  protected:
    ArchivedAccounts() { waitUntilIdle(context_.tasks); }

    [[nodiscard]] QString text(int row, int role) {
        return detail_.rows()->data(detail_.rows()->index(row), role).toString();
    }

    void show(const SharedOverview& overview, Known known = Known::known) {
        detail_.show(overview, known);
        guide_.show(overview, known);
    }

    ModelContext context_{platform_};
    CorvaneViewModel model_{context_};
    testing::RecordingDesktop desktop_;
    AccountDetail detail_{model_.library().mailOpening};
    DeletionGuide guide_{model_, desktop_};
};

TEST_F(ArchivedAccounts, YearsOpenAndKeepTheirPlaceWhenFiguresChange) {
    const auto first = sampleOverview({{.year = 2012, .freeable = {3, 3'000'000}},
                                       {.year = 2013, .status = Status::serverUnbacked, .rest = {5, 50}}},
                                      {2, 2'000});
    detail_.open("a");
    EXPECT_FALSE(detail_.isOpen());
    show(first);
    ASSERT_TRUE(detail_.isOpen());
    EXPECT_EQ(detail_.subtitle(), QStringLiteral("2012 年可以放心清理，2013 年还有邮件没有归档。"));
    ASSERT_EQ(detail_.rows()->count(), 3);
    EXPECT_TRUE(text(2, AccountRowsModel::TitleRole).startsWith(QStringLiteral("另有 2 封没有日期")));
    detail_.rows()->setExpanded(1, true);
    EXPECT_EQ(text(2, AccountRowsModel::TitleRole), QStringLiteral("收件箱"));
    EXPECT_EQ(detail_.rows()->parentRow(2), 1);
    EXPECT_EQ(text(0, AccountRowsModel::FreeableRole), QStringLiteral("3 MB"));

    QSignalSpy reset(detail_.rows(), &QAbstractItemModel::modelReset);
    show(first, Known::checking);
    EXPECT_EQ(text(0, AccountRowsModel::FreeableRole), QStringLiteral("—"));
    EXPECT_FALSE(detail_.hasGuide());
    show(sampleOverview({{.year = 2013, .status = Status::completed, .removed = {5, 50}}}));
    EXPECT_EQ(text(0, AccountRowsModel::RemovedRole), QStringLiteral("5"));
    EXPECT_EQ(text(1, AccountRowsModel::TitleRole), QStringLiteral("收件箱"));
    EXPECT_EQ(reset.count(), 0);
    auto none = std::make_shared<ArchivedOverview>(*first);
    none->groups = std::make_shared<const std::vector<ArchivedOverviewGroup>>();
    show(none);
    EXPECT_FALSE(detail_.isOpen());
    EXPECT_EQ(detail_.rows()->count(), 0);
}

TEST_F(ArchivedAccounts, TheGuideGivesConditionsForWhatIsProvenAndTakesThemBack) {
    show(sampleOverview({{.year = 2012, .freeable = {1, 1}},
                         {.year = 2013, .freeable = {1, 1}},
                         {.year = 2014, .status = Status::incomplete, .awaitsProof = true, .rest = {1, 1}},
                         {.year = 2015, .freeable = {1, 1}}}));
    guide_.open("a", false);
    ASSERT_TRUE(guide_.isReady());
    EXPECT_EQ(guide_.spans(), (QStringList{QStringLiteral("2012 – 2013 年"), QStringLiteral("2015 年")}));
    EXPECT_EQ(guide_.name(), QStringLiteral("可删除·2012–2013"));
    EXPECT_EQ(guide_.leftOut(), QStringLiteral("2014 年没有列入：还有原件没有核对。"));
    guide_.setCurrent(1);
    guide_.copyCondition();
    EXPECT_EQ(
        desktop_.copied,
        QStringLiteral(
            "「账号」是「a@a.example」;并「收到日期」在 2015 年 1 月 1 日之后、在 2016 年 1 月 1 日之前。"));

    // Mail came into 2015 that isn't archived; 2016 was never asked for.
    show(sampleOverview({{.year = 2012, .freeable = {1, 1}},
                         {.year = 2015, .status = Status::serverUnbacked, .rest = {1, 1}},
                         {.year = 2016, .freeable = {1, 1}}}));
    EXPECT_EQ(guide_.spans(), QStringList{QStringLiteral("2012 年")});
    // Nor is a year given in which the search would find what the server alone has.
    show(sampleOverview(
        {{.year = 2012, .freeable = {1, 1}}, {.year = 2013, .freeable = {1, 1}, .serverAlone = 2}}));
    EXPECT_EQ(guide_.spans(), QStringList{QStringLiteral("2012 年")});
    EXPECT_TRUE(guide_.leftOut().contains(QStringLiteral("2 封只在服务器上")));
    EXPECT_EQ(guide_.name(), QStringLiteral("可删除·2012"));
    for (const Known known : {Known::checking, Known::waiting, Known::unavailable, Known::partial}) {
        show(sampleOverview({{.year = 2012, .freeable = {1, 1}}}), known);
        EXPECT_FALSE(guide_.isReady());
        EXPECT_TRUE(guide_.condition().isEmpty());
        desktop_.copied.clear();
        guide_.copyName();
        EXPECT_TRUE(desktop_.copied.isEmpty());
    }
    desktop_.opens = false;
    QSignalSpy failed(&guide_, &DeletionGuide::failed);
    guide_.openMail();
    EXPECT_EQ(failed.count(), 1);
}

} // namespace
} // namespace corvane
