#include "screens/home/home_screen.h"

#include <filesystem>
#include <memory>
#include <set>

#include <gtest/gtest.h>

#include "screens/support/screens_fixture.h"
#include "screens/texts/message_trouble.h"

namespace corvane {
namespace {

using State = HomeScreen::State;

TEST(SafetyBanners, NothingIsSafeBeforeEveryLocalMessageHasACopy) {
    const struct {
        DeletionSafety safety;
        const char* kind;
        qsizetype lines; // the server's messages have one of their own
    } cases[] = {
        {{36195, 23789, 3127}, "attention", 2},
        {{5, 5, 0, {.proven = 5}}, "safe", 1},
        {{5, 5, 2, {.proven = 5}}, "safe", 2},
        {{5, 5, 0, {.proven = 4}}, "info", 1},
        {{.local = 5, .archived = 5, .serverOnly = 3, .proofs = {.proven = 5}, .partial = 1}, "attention", 2},
        {{.local = 5, .archived = 5, .serverOnly = 1, .proofs = {.proven = 5}, .partial = 1}, "attention", 1},
        {{5, 4, 0, {.proven = 4, .differs = 1}}, "attention", 1},
        {{5, 4, 0}, "attention", 1},
        {{0, 0, 0}, "info", 1},
        {{0, 0, 9}, "info", 2}};

    for (const auto& [safety, kind, lines] : cases) {
        const SafetyBanner banner = screens::deletionSafetyBanner(QStringLiteral("范围"), safety);
        EXPECT_EQ(banner.kind.toStdString(), kind);
        EXPECT_EQ(banner.lines.size(), lines);
        EXPECT_TRUE(banner.headline.startsWith(QStringLiteral("范围：")));
    }
    EXPECT_EQ(screens::deletionSafetyBanner({}, {5, 5, 0, {.proven = 5}}, false).kind, QStringLiteral("info"))
        << "before it is known what the server alone has";
    EXPECT_TRUE(screens::deletionSafetyBanner({}, {36195, 23789, 0})
                    .headline.contains(QStringLiteral("23,789 封，未归档 12,406 封")));
}

class OrganizeHome : public testing::ScreensTest {
  protected:
    void archiveAndProve(const std::string& root) {
        model_.archiving().destinations.setTransferDestination(root);
        settle();
        model_.archiving().ticks.selectAllArchiveCandidates();
        model_.archiveSelectedEmails([](const auto&) {});
        settle();
        homeScreen_.proof()->start();
        EXPECT_TRUE(homeScreen_.proof()->isProving());
        EXPECT_FALSE(homeScreen_.proof()->canStart());
        settle();
    }

    [[nodiscard]] QString proofItem(int number) {
        return homeScreen_.proof()->items().value(number).toMap()[QStringLiteral("text")].toString();
    }

    void publishTwoAccounts() {
        publish({{"a", 2019, "imap://A", "INBOX", 3000}, {"b", 2020}, {"c", 2020, "imap://B"}});
    }

    [[nodiscard]] std::vector<int> shownYears() const {
        std::vector<int> years;
        for (const QVariant& year : homeScreen_.figures().years)
            years.push_back(year.toMap()[QStringLiteral("year")].toInt());
        return years;
    }
};

TEST_F(OrganizeHome, BeginsWithTheUpdateAndListsWhatIsThere) {
    EXPECT_EQ(homeScreen_.state(), State::FirstUse);
    publishTwoAccounts();
    EXPECT_EQ(homeScreen_.state(), State::List);
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("3 封需要放入归档库。"));
    EXPECT_EQ(homeScreen_.figures().banner.headline,
              QStringLiteral("全部年份：已完成归档 0 封，未归档 3 封"));
    EXPECT_EQ(shownYears(), (std::vector<int>{2019, 2020}));
    EXPECT_EQ(homeScreen_.accounts()->rowCount(), 3);
    EXPECT_NE(rowOf("a@example.org"), -1);
}

TEST_F(OrganizeHome, TheShieldComesWithTheProofAndGoesWithTheFirstDifference) {
    publish({{"a", 2020}, {"b", 2020}});
    archiveAndProve(home_.at("归档"));
    EXPECT_EQ(homeScreen_.figures().banner.kind, QStringLiteral("safe"));
    EXPECT_EQ(homeScreen_.proof()->items().size(), 1);
    EXPECT_EQ(proofItem(0), QStringLiteral("已逐字节核对 2 封"));
    EXPECT_FALSE(homeScreen_.proof()->hasTroubles());
    home_.write("Library/Mail/V10/a/a.emlx", "5\nother");
    publish({{.name = "a", .year = 2020, .hasFile = false}, {.name = "b", .year = 2020, .hasFile = false}});
    EXPECT_EQ(homeScreen_.figures().banner.kind, QStringLiteral("info"));
    EXPECT_TRUE(homeScreen_.proof()->canStart());
    homeScreen_.proof()->start();
    settle();
    EXPECT_EQ(homeScreen_.figures().banner.kind, QStringLiteral("attention"));
    EXPECT_EQ(homeScreen_.figures().banner.headline,
              QStringLiteral("全部年份：已完成归档 1 封，未归档 1 封"));
    ASSERT_TRUE(homeScreen_.proof()->hasTroubles());
    model_.mail().filters.set(&ListFilters::minimumAttachmentCount, 3);
    QSignalSpy requested(&homeScreen_, &HomeScreen::troubledRequested);
    homeScreen_.showTroubled();
    EXPECT_EQ(requested.size(), 1);
    EXPECT_TRUE(model_.mail().filters.list().onlyTroubled);
    EXPECT_EQ(model_.mail().filters.list().minimumAttachmentCount, 0) << "no other filter hides some of it";
}

TEST_F(OrganizeHome, AProofThatRestsOnAPulledDiskSaysOfWhichDayItIs) {
    publish({{"a", 2020}, {"b", 2020}});
    platform_.plugIn("盘");
    archiveAndProve(home_.at("Volumes/盘/归档"));
    EXPECT_EQ(proofItem(1), QString());
    const MailMessageRecord message = model_.mail().catalog.messages()->front();
    EXPECT_EQ(screens::awayProofText(model_, message), QString());
    platform_.unplug();
    std::filesystem::rename(home_.at("Volumes/盘"), home_.at("away"));
    model_.library().loader.loadEmailArchiveIndex({}, true);
    settle();
    EXPECT_TRUE(proofItem(1).startsWith(QStringLiteral("其中 2 封是 20"))) << proofItem(1).toStdString();
    EXPECT_TRUE(screens::awayProofText(model_, message).endsWith(QStringLiteral(" 的比对，归档磁盘未连接")));
}

TEST_F(OrganizeHome, ACapturedStartShowsStatisticsAndCallsNothingSafe) {
    MailHomeSnapshot snapshot;
    snapshot.summary.scannedMessages = 5;
    snapshot.localAccountYearStats = {{"imap://A", "a@x", {{2020, 5, 5, 5, 900, 1}}, 5, 900}};
    model_.mail().catalog.applyHomeSnapshot(snapshot);
    settle();
    EXPECT_EQ(homeScreen_.state(), State::List);
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("5 封需要放入归档库。"));
    EXPECT_EQ(homeScreen_.figures().banner.kind, QStringLiteral("info"));
    EXPECT_FALSE(homeScreen_.figures().isKnown);
    chooseDestination(home_.at("x"));
    EXPECT_TRUE(homeScreen_.selection().organizePrimaryDisabled);
    homeScreen_.runOrganizePrimaryAction();
    EXPECT_EQ(archiveScreen_.stage(), ArchiveScreen::Closed) << "there are no messages yet";
}

TEST_F(OrganizeHome, APartialListClaimsNothing) {
    publishTwoAccounts();
    homeScreen_.setScopeYear(2019);
    model_.mail().scanFlow.scan();
    auto listed =
        std::make_shared<const MessageList>(testing::sampleMessages(home_, {{"a", 2019}, {"d", 2021}}));
    model_.mail().catalog.showProgress(MessageSet::passing(std::move(listed)), {});
    model_.mail().scanFlow.cancelScan();
    settle();
    EXPECT_EQ(homeScreen_.state(), State::Partial);
    EXPECT_EQ(homeScreen_.figures().banner.kind, QStringLiteral("attention"));
    EXPECT_FALSE(homeScreen_.figures().isKnown);
    EXPECT_TRUE(homeScreen_.figures().years.isEmpty());
    EXPECT_TRUE(homeScreen_.organizeSidebarSubtitle().isEmpty());
    chooseDestination(home_.at("归档"));
    EXPECT_TRUE(homeScreen_.selection().organizePrimaryDisabled);
    homeScreen_.runOrganizePrimaryAction();
    EXPECT_EQ(archiveScreen_.stage(), ArchiveScreen::Closed);
    EXPECT_TRUE(homeScreen_.access()->restoreTitle().isEmpty()) << "nothing has been cached yet";

    publish({{"a", 2019}});
    EXPECT_EQ(homeScreen_.state(), State::List);
}

TEST_F(OrganizeHome, NothingIsSaidToBeTheFirstUseBeforeTheLastResultWasLookedFor) {
    CorvaneViewModel model(context_);
    OrganizeData data(model, std::chrono::milliseconds(0));
    ArchiveScreen sheet(model, data, desktop_);
    const HomeScreen home(model, data, sheet, desktop_);
    EXPECT_EQ(home.state(), State::Loading);
    testing::waitUntilIdle(context_.tasks);
    EXPECT_EQ(home.state(), State::Loading) << "nobody has looked";
    model.mail().scanFlow.loadCachedScanIfNeeded(false);
    EXPECT_EQ(home.state(), State::Loading);
    testing::waitUntilIdle(context_.tasks);
    EXPECT_EQ(home.state(), State::FirstUse);
}

TEST_F(OrganizeHome, TheNarrowingGoesWithTheFiltersThatItSet) {
    publishTwoAccounts();
    homeScreen_.setScopeYear(2019);
    homeScreen_.chooseAccount(1);
    model_.mail().filters.clearScope(); // as a full refresh does
    EXPECT_FALSE(homeScreen_.figures().isNarrowed);
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("3 封需要放入归档库。"));

    homeScreen_.setScopeYear(2019);
    homeScreen_.chooseAccount(1);
    publish({{"b", 2020}, {"c", 2020, "imap://B"}});
    Q_EMIT model_.mail().scanFlow.scanFinished();
    EXPECT_EQ(homeScreen_.figures().scopeYear, 0) << "a year that has gone";
    EXPECT_TRUE(model_.mail().filters.list().filterYears.empty());

    homeScreen_.chooseAccount(2);
    publish({{"b", 2020}});
    EXPECT_FALSE(homeScreen_.figures().isNarrowed) << "an account that has gone";
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("1 封需要放入归档库。"));
}

TEST_F(OrganizeHome, ThePrimaryActionStopsAtTheFirstStepThatActs) {
    homeScreen_.runOrganizePrimaryAction();
    EXPECT_EQ(archiveScreen_.stage(), ArchiveScreen::Closed);
    EXPECT_FALSE(homeScreen_.scan()->isScanning()) << "without a destination nothing happens";

    publishTwoAccounts();
    homeScreen_.runOrganizePrimaryAction();
    EXPECT_EQ(archiveScreen_.stage(), ArchiveScreen::Closed);
    EXPECT_TRUE(homeScreen_.selection().organizePrimaryDisabled);

    chooseDestination(home_.at("归档"));
    homeScreen_.runOrganizePrimaryAction();
    settle();
    EXPECT_EQ(archiveScreen_.stage(), ArchiveScreen::Confirm);
    EXPECT_EQ(archiveScreen_.candidates()->selectedCount(), 3) << "nothing ticked: all of them";
    EXPECT_EQ(archiveScreen_.confirmation().archiveScopeTitle, QStringLiteral("全部年份"));
}

TEST_F(OrganizeHome, WithoutAccountsThePrimaryActionLeadsToThePermission) {
    testing::publishMessages(model_.mail().catalog, testing::sampleMessages(home_, {{"a", 2019}}));
    chooseDestination(home_.at("归档"));
    model_.mail().scanFlow.refreshAllMailData();
    settle();
    ASSERT_TRUE(model_.mail().accounts.availableAccounts().empty());
    QSignalSpy failed(homeScreen_.access(), &AccessActions::failed);
    homeScreen_.runOrganizePrimaryAction();
    EXPECT_EQ(desktop_.opened.size(), 1);
    EXPECT_EQ(failed.size(), 0);
    desktop_.opens = false;
    homeScreen_.runOrganizePrimaryAction();
    EXPECT_EQ(failed.size(), 1) << "a system without these settings";
    EXPECT_EQ(archiveScreen_.stage(), ArchiveScreen::Closed);
    EXPECT_TRUE(homeScreen_.scan()->failureText().contains(QStringLiteral("没有找到 Mail 索引文件")));
}

TEST_F(OrganizeHome, NarrowingKeepsTicksAndTellsItsScope) {
    publishTwoAccounts();
    homeScreen_.tree()->toggleTick(rowOf("2019 年"));
    EXPECT_EQ(homeScreen_.selection().title, QStringLiteral("已选 3 KB"));
    EXPECT_EQ(homeScreen_.selection().organizeSelectionSummary,
              QStringLiteral("1 封邮件。先选择归档位置，再归档这些邮件。"));

    homeScreen_.setScopeYear(2020);
    EXPECT_EQ(homeScreen_.figures().organizeRangeTitle, QStringLiteral("2020 年"));
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("2 封需要放入归档库。"));
    EXPECT_EQ(model_.mail().filters.list().filterYears, std::set<std::int64_t>{2020});
    EXPECT_EQ(rowOf("2019 年"), -1);
    EXPECT_EQ(homeScreen_.selection().line, QStringLiteral("已选 1 封 · 3 KB")) << "ticks outside stay";
    EXPECT_EQ(shownYears().size(), 2U) << "the chart keeps all years to press";

    homeScreen_.chooseAccount(2);
    EXPECT_EQ(homeScreen_.figures().organizeRangeTitle, QStringLiteral("imap://B · 2020 年"));
    homeScreen_.setScopeYear(2018);
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("当前范围暂无邮件。"));
    homeScreen_.clearScope();
    EXPECT_EQ(homeScreen_.tree()->rowCount(), 5);
    EXPECT_TRUE(model_.mail().filters.filterAccountPrefixes().empty());
}

TEST_F(OrganizeHome, FiguresChangeAtMostOnceAnInterval) {
    const std::chrono::milliseconds interval(300);
    OrganizeData data(model_, interval);
    QSignalSpy changed(&data, &OrganizeData::overviewChanged);
    QElapsedTimer clock;
    clock.start();
    for (int round = 0; round < 20; ++round)
        publish({{"r" + std::to_string(round), 2019}, {"s" + std::to_string(round), 2019}});
    // The empty start doesn't count.
    EXPECT_LE(changed.size(), 2 + clock.elapsed() / interval.count());
    while (!data.isUpToDate()) ASSERT_TRUE(changed.wait());
    EXPECT_EQ(data.overview()->candidateCount(), 2);
}

TEST_F(OrganizeHome, RowsWaitWhileThePointerIsPressed) {
    publishTwoAccounts();
    homeScreen_.setHeld(true);
    testing::publishMessages(model_.mail().catalog, testing::sampleMessages(home_, {{"x", 2019}}));
    testing::waitUntilIdle(context_.tasks);
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("3 封需要放入归档库。"));
    homeScreen_.setHeld(false);
    settle();
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("1 封需要放入归档库。"));
}

TEST_F(OrganizeHome, AfterTheLastMessageTheLibraryIsNext) {
    publish({{"a", 2019}});
    chooseDestination(home_.at("归档"));
    archiveScreen_.open(ArchiveRequest::of(
        std::make_shared<const SharedTextSet>(SharedTextSet{model_.mail().catalog.messages()->front().id})));
    settle();
    archiveScreen_.start();
    settle();
    EXPECT_EQ(homeScreen_.state(), State::NothingToDo);
    EXPECT_EQ(homeScreen_.figures().banner.kind, QStringLiteral("safe"));
    EXPECT_EQ(homeScreen_.selection().organizePrimaryTitle, QStringLiteral("打开归档库"));
    QSignalSpy requests(&homeScreen_, &HomeScreen::libraryRequested);
    homeScreen_.runOrganizePrimaryAction();
    EXPECT_EQ(requests.count(), 1);
    EXPECT_TRUE(desktop_.opened.isEmpty());
    EXPECT_TRUE(homeScreen_.nothingToDoLine().contains(QStringLiteral("已归档概览")));
    std::filesystem::rename(home_.at("归档"), home_.at("拔掉"));
    model_.archiving().destinations.refreshFacts();
    settle();
    EXPECT_FALSE(homeScreen_.selection().organizePrimaryDisabled)
        << "the library shows what is unplugged, too";
}

TEST_F(OrganizeHome, MailThatHasJustComeInIsNotNothingToDo) {
    settle();
    testing::publishMessages(model_.mail().catalog, testing::sampleMessages(home_, {{"a", 2019}}));
    const auto isUndecided = [this] {
        return homeScreen_.state() == State::List && !homeScreen_.figures().isKnown &&
               homeScreen_.figures().banner.kind == u"info";
    };
    EXPECT_TRUE(isUndecided());
    testing::waitUntilIdle(context_.tasks);
    EXPECT_TRUE(isUndecided() || homeScreen_.figures().isKnown);
    settle();
    EXPECT_EQ(homeScreen_.state(), State::List);
    EXPECT_TRUE(homeScreen_.figures().isKnown);
}

TEST_F(OrganizeHome, AStoreThatCannotBeReadAsksForThePermission) {
    home_.write("Library/Mail/V10/MailData/Envelope Index", "");
    homeScreen_.access()->recheckAccess();
    settle();
    EXPECT_EQ(homeScreen_.state(), State::NoAccess);
    home_.write("Library/Mail/V10/MailData/Envelope Index", "x");
    homeScreen_.access()->recheckAccess();
    settle();
    EXPECT_EQ(homeScreen_.state(), State::FirstUse);
}

} // namespace
} // namespace corvane
