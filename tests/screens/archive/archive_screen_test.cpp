#include "screens/archive/archive_screen.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "locations/archive_samples.h"
#include "records/archive_files/archive_index_file.h"
#include "screens/support/screens_fixture.h"

namespace corvane::testing {
namespace {

using Stage = ArchiveScreen::Stage;

class ArchiveSheet : public ScreensTest {
  protected:
    void publishThree() {
        publish({{"a", 2019, "imap://A", "INBOX", 3000}, {"b", 2019}, {"c", 2020, "imap://B"}});
    }

    void openForYears(std::initializer_list<int> rows) {
        for (const int row : rows) homeScreen_.tree()->toggleTick(row);
        homeScreen_.runOrganizePrimaryAction();
        settle();
    }

    void run() {
        archiveScreen_.start();
        settle();
    }

    [[nodiscard]] QString tile(int position) {
        const QVariantMap tile = archiveScreen_.outcome()->view().tiles.at(position).toMap();
        return tile[QStringLiteral("caption")].toString() + u' ' + tile[QStringLiteral("figure")].toString();
    }

    ArchiveCandidatesModel& candidates_ = *archiveScreen_.candidates();
};

TEST_F(ArchiveSheet, OffersWhatWasTickedAndArchivesWhatStaysTicked) {
    publishThree();
    chooseDestination(home_.at("Documents/邮件归档"));
    openForYears({1});
    EXPECT_EQ(archiveScreen_.stage(), Stage::Confirm);
    EXPECT_EQ(archiveScreen_.confirmation().archiveScopeTitle, QStringLiteral("2019 年"));
    ASSERT_EQ(candidates_.count(), 2);
    EXPECT_EQ(archiveScreen_.confirmation().tickedText, QStringLiteral("已勾选 2 封，共 2 封"));
    candidates_.toggleTick(1);
    EXPECT_EQ(archiveScreen_.confirmation().archiveSelectionSummary, QStringLiteral("1 封邮件，共 3 KB"));
    EXPECT_EQ(candidates_.tickState(), 2);

    QSignalSpy finished(&archiveScreen_, &ArchiveScreen::archiveFinished);
    run();
    EXPECT_EQ(finished.size(), 1);
    EXPECT_EQ(archiveScreen_.stage(), Stage::Result);
    EXPECT_TRUE(archiveScreen_.outcome()->view().isSafe);
    EXPECT_EQ(tile(0), QStringLiteral("已归档 1"));
    EXPECT_EQ(readArchiveIndex(home_.at("Documents/邮件归档/archive-index.json"))->records.size(), 1U);
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("2 封需要放入归档库。"));
    archiveScreen_.close();
    EXPECT_TRUE(model_.mail().filters.candidates().archiveFilterYears.empty());
    EXPECT_EQ(model_.archiving().candidates.archiveCandidates()->size(), 2U);
}

TEST_F(ArchiveSheet, OffersToRebuildTheIndexOfAnArchiveThatLostIt) {
    home_.write("Archive/2020/a/x.eml", "From: a\nMessage-ID: <m>\n\nbody");
    home_.write("Archive/2020/a/y.eml", "");
    chooseDestination(home_.at("Archive"));
    RebuildNotice& notice = *archiveScreen_.place()->rebuildNotice();
    ASSERT_TRUE(notice.canStart());
    EXPECT_EQ(notice.title(), QStringLiteral("这个归档没有索引"));
    EXPECT_TRUE(notice.text().contains(QStringLiteral("2 封"))) << notice.text().toStdString();
    notice.start();
    EXPECT_TRUE(notice.isRunning());
    model_.archiving().rebuild.cancel();
    settle();
    EXPECT_TRUE(notice.canStart()) << "nothing was done";
    notice.start();
    settle();
    EXPECT_EQ(notice.title(), QStringLiteral("索引已重建"));
    EXPECT_EQ(notice.text(),
              QStringLiteral("已收入 1 封。1 个文件没有收入，如“2020/a/y.eml”：没有邮件头，不是邮件。"));
    EXPECT_FALSE(notice.canStart());
}

TEST_F(ArchiveSheet, SelectedCandidatesAreTickedTogetherAndCopied) {
    publishThree();
    archiveScreen_.open(ArchiveRequest::of(
        std::make_shared<const SharedTextSet>(*model_.mail().catalog.locallyAvailableIDs())));
    settle();
    ASSERT_EQ(candidates_.count(), 3);
    candidates_.selection()->select(2);
    candidates_.selection()->extendTo(1);
    candidates_.copySelection();
    candidates_.toggleTicks(1);
    settle();
    EXPECT_EQ(desktop_.copied.count(u'\n'), 1) << desktop_.copied.toStdString();
    EXPECT_EQ(archiveScreen_.confirmation().tickedText, QStringLiteral("已勾选 1 封，共 3 封"));
    candidates_.toggleTick(2);
    candidates_.toggleTicks(1); // one of the two is ticked: they take what the row at the keyboard gets
    settle();
    EXPECT_EQ(candidates_.tickState(), 1);
    candidates_.selection()->select(0);
    candidates_.toggleTicks(0);
    EXPECT_EQ(archiveScreen_.confirmation().tickedText, QStringLiteral("已勾选 2 封，共 3 封"));
}

TEST_F(ArchiveSheet, FiltersOfOtherScreensTakeNothingFromWhatWasTicked) {
    publishThree();
    chooseDestination(home_.at("x"));
    model_.mail().filters.setFilterAccountPrefixes({"imap://B"});
    openForYears({1});
    EXPECT_EQ(candidates_.count(), 2);
}

TEST_F(ArchiveSheet, SaysWhyItCannotStart) {
    publishThree();
    archiveScreen_.open(ArchiveRequest::of(
        std::make_shared<const SharedTextSet>(SharedTextSet{model_.mail().catalog.messages()->front().id})));
    settle();
    EXPECT_EQ(archiveScreen_.confirmation().archiveButtonTitle, QStringLiteral("先选择位置"));
    EXPECT_FALSE(archiveScreen_.confirmation().canStart);

    platform_.plugIn("盘");
    home_.makeFolder("Volumes/盘");
    chooseDestination(home_.at("Volumes/盘/邮件"));
    EXPECT_TRUE(archiveScreen_.confirmation().canStart);
    std::filesystem::remove_all(home_.at("Volumes/盘"));
    platform_.unplug();
    model_.archiving().destinations.refreshFacts();
    settle();
    EXPECT_EQ(archiveScreen_.confirmation().archiveButtonTitle, QStringLiteral("位置不可用"));
    EXPECT_TRUE(archiveScreen_.confirmation().footnote.contains(QStringLiteral("未连接")));
    archiveScreen_.start();
    EXPECT_EQ(archiveScreen_.stage(), Stage::Confirm);

    chooseDestination(home_.at("Documents/x"));
    candidates_.toggleAllTicks();
    EXPECT_EQ(archiveScreen_.confirmation().archiveButtonTitle, QStringLiteral("选择邮件后归档"));
    EXPECT_FALSE(archiveScreen_.confirmation().canStart);
}

TEST_F(ArchiveSheet, TheSmallestSizeIsOfOneSheetAndLeavesTheHomeAlone) {
    MessageSketch large{"large", 2019};
    large.bytes = 11'000'000;
    publish({large, {"small", 2019}});
    chooseDestination(home_.at("x"));
    homeScreen_.runOrganizePrimaryAction();
    settle();
    ASSERT_EQ(candidates_.count(), 2);
    archiveScreen_.setMinimumSize(1);
    settle();
    EXPECT_EQ(candidates_.count(), 1);
    EXPECT_EQ(candidates_.selectedCount(), 1);
    EXPECT_EQ(homeScreen_.organizeSimpleSummary(), QStringLiteral("2 封需要放入归档库。"));
    archiveScreen_.setMinimumSize(3);
    settle();
    EXPECT_EQ(candidates_.count(), 0);
    EXPECT_EQ(archiveScreen_.confirmation().archiveEmptyTitle, QStringLiteral("没有可归档的邮件"));
    archiveScreen_.close();
    EXPECT_EQ(model_.mail().filters.candidates().transferMinimumSize, TransferSizePreset::any);
}

TEST_F(ArchiveSheet, ARangeTicksWhatIsShownAndNothingElse) {
    publish({{"a", 2019}, {"hidden", 2020}, {"b", 2019}, {"c", 2019}});
    chooseDestination(home_.at("x"));
    openForYears({1});
    candidates_.toggleAllTicks();
    ASSERT_EQ(candidates_.selectedCount(), 0);
    candidates_.toggleTick(0);
    candidates_.tickRange(2);
    settle();
    EXPECT_EQ(candidates_.selectedCount(), 3);
    EXPECT_EQ(model_.archiving().ticks.selectedArchiveMessages().size(), 3U);
}

TEST_F(ArchiveSheet, FailuresCanBeCopiedAndTriedAgain) {
    publishThree();
    chooseDestination(home_.at("归档"));
    const std::string lost = home_.at("Library/Mail/V10/a/b.emlx");
    const std::string kept = readWhole(lost);
    std::filesystem::remove(lost);
    openForYears({1});
    run();
    EXPECT_EQ(archiveScreen_.outcome()->view().title, QStringLiteral("归档完成，1 封失败"));
    EXPECT_EQ(archiveScreen_.outcome()->view().retryTitle, QStringLiteral("再试失败的 1 封"));
    archiveScreen_.outcome()->copyFailures();
    EXPECT_TRUE(desktop_.copied.contains(QString::fromStdString(lost)));

    home_.write("Library/Mail/V10/a/b.emlx", kept);
    archiveScreen_.retryFailed();
    settle();
    EXPECT_EQ(archiveScreen_.stage(), Stage::Confirm) << "where another place can be chosen";
    ASSERT_EQ(candidates_.count(), 1);
    EXPECT_TRUE(candidates_.data(candidates_.index(0), ArchiveCandidatesModel::TroubleRole)
                    .toString()
                    .startsWith(QStringLiteral("上次失败：")));
    run();
    EXPECT_TRUE(archiveScreen_.outcome()->view().isSafe);
}

TEST_F(ArchiveSheet, AnErrorBringsTheConfirmationBackWithItsTicks) {
    publishThree();
    const std::string folder = home_.at("归档");
    chooseDestination(folder);
    openForYears({1});
    candidates_.toggleTick(0);
    std::filesystem::remove_all(folder);
    home_.write("归档", "a file where the folder was");
    run();
    EXPECT_EQ(archiveScreen_.stage(), Stage::Confirm);
    EXPECT_FALSE(archiveScreen_.errorText().isEmpty());
    EXPECT_EQ(candidates_.count(), 2);
    EXPECT_EQ(candidates_.selectedCount(), 1);
    chooseDestination(home_.at("另一处"));
    EXPECT_TRUE(archiveScreen_.errorText().isEmpty()) << "it was about the other place";
}

TEST_F(ArchiveSheet, ARunGoesOnInTheBackgroundAndEndsInItsResult) {
    std::vector<MessageSketch> sketches;
    for (int number = 0; number < 200; ++number) sketches.push_back({"m" + std::to_string(number), 2019});
    publish(sketches);
    chooseDestination(home_.at("归档"));
    homeScreen_.runOrganizePrimaryAction();
    settle();
    archiveScreen_.start();
    archiveScreen_.close();
    EXPECT_EQ(archiveScreen_.stage(), Stage::Running) << "a run is cancelled, not closed";
    archiveScreen_.background()->send();
    EXPECT_FALSE(archiveScreen_.isShown());
    EXPECT_EQ(homeScreen_.selection().organizePrimaryTitle, QStringLiteral("查看归档进度"));
    homeScreen_.runOrganizePrimaryAction();
    EXPECT_TRUE(archiveScreen_.isShown());
    archiveScreen_.background()->send();
    archiveScreen_.cancelRun();
    EXPECT_TRUE(archiveScreen_.progress()->isCancelling());
    settle();
    EXPECT_FALSE(archiveScreen_.isShown()) << "over other work";
    EXPECT_TRUE(archiveScreen_.background()->endText().startsWith(QStringLiteral("归档已取消")));
    archiveScreen_.background()->showEnd();
    EXPECT_EQ(archiveScreen_.stage(), Stage::Result);
    EXPECT_TRUE(archiveScreen_.background()->endText().isEmpty());
    EXPECT_EQ(archiveScreen_.outcome()->view().title, QStringLiteral("归档已取消"));
    const ArchiveResultView& result = archiveScreen_.outcome()->view();
    EXPECT_EQ(tile(static_cast<int>(result.tiles.size()) - 1), QStringLiteral("合计 200"));
}

TEST_F(ArchiveSheet, CandidatesThatAreArchivedElsewhereLeaveTheSheet) {
    publishThree();
    chooseDestination(home_.at("归档"));
    openForYears({1});
    EmailArchiveIndex index = sampleIndex(1, {"mid:a@example.org"});
    index.records.front().sizeBytes = 12; // as its file has
    writeArchive(home_, "归档", index);
    QSignalSpy resets(&candidates_, &QAbstractItemModel::modelReset);
    model_.library().loader.loadEmailArchiveIndex(home_.at("归档"), true);
    settle();
    EXPECT_EQ(candidates_.count(), 1);
    EXPECT_EQ(archiveScreen_.confirmation().tickedText, QStringLiteral("已勾选 1 封，共 1 封"));
    EXPECT_EQ(resets.size(), 0);
}

TEST_F(ArchiveSheet, QuickDestinationsDoNotBeginASecondArchiveBesideOne) {
    home_.makeFolder("Library/CloudStorage/Nutstore-lin@x");
    home_.makeFolder("Library/CloudStorage/Box-b");
    writeArchive(home_, "Library/CloudStorage/Box-b/旧归档", sampleIndex(1, {"old"}));
    model_.library().loader.loadEmailArchiveIndex(std::nullopt, true);
    publishThree();
    chooseDestination(home_.at("Documents/手选"));
    QuickDestinations& quick = *archiveScreen_.place()->quickDestinations();
    openForYears({1});
    ASSERT_EQ(quick.rowCount(), 3);
    EXPECT_TRUE(quick.hasQuickDestinations());
    const auto text = [&](int row, QuickDestinations::Role role) {
        return quick.data(quick.index(row), role).toString().toStdString();
    };
    EXPECT_EQ(text(0, QuickDestinations::NameRole), "Box");
    EXPECT_EQ(text(1, QuickDestinations::NameRole), "坚果云");
    EXPECT_EQ(text(1, QuickDestinations::DetailRole), "lin@x");
    EXPECT_EQ(text(2, QuickDestinations::DetailRole), "~/Documents");
    EXPECT_EQ(text(2, QuickDestinations::ChosenRole), "true");
    quick.choose(1);
    settle();
    EXPECT_EQ(model_.archiving().destinations.transferDestination(),
              home_.at("Library/CloudStorage/Nutstore-lin@x/邮件归档"));
    quick.choose(0);
    settle();
    EXPECT_EQ(model_.archiving().destinations.transferDestination(),
              home_.at("Library/CloudStorage/Box-b/旧归档"));
    home_.write("一个文件", "x");
    quick.chooseFolder(QUrl::fromLocalFile(QString::fromStdString(home_.at("一个文件/归档"))));
    settle();
    EXPECT_FALSE(quick.refusal().isEmpty());
    EXPECT_EQ(model_.archiving().destinations.transferDestination(),
              home_.at("Library/CloudStorage/Box-b/旧归档"));
}

TEST_F(ArchiveSheet, AHundredThousandCandidatesAreShownAndTickedWithoutHoldingTheWindow) {
    MessageList messages;
    auto ids = std::make_shared<SharedTextSet>();
    messages.reserve(100'000);
    for (int number = 0; number < 100'000; ++number) {
        MailMessageRecord message;
        message.id = "/m/" + std::to_string(number);
        message.fileURL = FileURL(message.id);
        message.messageSize = 1000;
        message.date = Date(std::chrono::seconds(1'500'000'000 + number));
        ids->insert(message.id);
        messages.push_back(std::move(message));
    }
    AvailabilityResult known;
    known.locallyAvailableIDs = ids;
    auto set = MessageSet::make(std::make_shared<const MessageList>(std::move(messages)), false);
    known.yearByID = std::make_shared<const YearByID>(computeMessageYears(*set->messages));
    model_.mail().catalog.restore(set, {}, known);
    archiveScreen_.open(ArchiveRequest::of(ids));
    settle();
    ASSERT_EQ(candidates_.count(), 100'000);
    EXPECT_EQ(candidates_.selectedCount(), 100'000);
    QSignalSpy summed(&candidates_, &ArchiveCandidatesModel::selectionSummed);
    candidates_.toggleAllTicks();
    EXPECT_EQ(candidates_.selectedCount(), 0);
    candidates_.tickAll();
    EXPECT_EQ(candidates_.selectedCount(), 0) << "the set is made in the background";
    settle();
    EXPECT_EQ(candidates_.selectedBytes(), 100'000'000);
    EXPECT_LE(summed.size(), 3);
    archiveScreen_.close();
}

} // namespace
} // namespace corvane::testing
