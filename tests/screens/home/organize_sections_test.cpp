#include "listing/organize_sections.h"

#include <gtest/gtest.h>

#include "listing/organize_ticks.h"
#include "model/sample_messages.h"
#include "screens/home/figures/year_series.h"

namespace corvane {
namespace {

using testing::MessageSketch;
using testing::sampleMessages;

class Organized : public ::testing::Test {
  protected:
    // All messages are local but those whose name begins with "gone"; those beginning with "kept" are
    // archived.
    SharedOrganizeOverview overviewOf(const std::vector<MessageSketch>& sketches,
                                      std::vector<MailAccount> accounts = {},
                                      std::optional<std::int64_t> maximumYear = std::nullopt) {
        messages_ = std::make_shared<const MessageList>(sampleMessages(home_, sketches));
        auto local = std::make_shared<SharedTextSet>();
        auto archived = std::make_shared<SharedTextSet>();
        for (const auto& message : *messages_) {
            if (!message.subject.view().starts_with("gone")) local->insert(message.id);
            if (message.subject.view().starts_with("kept")) archived->insert(message.id);
        }
        return screens::computeOrganizeYearSections(
            {messages_, local, archived, std::make_shared<const YearByID>(computeMessageYears(*messages_)),
             maximumYear, std::move(accounts)});
    }

    [[nodiscard]] std::vector<std::string> subjectsOf(const SharedTextSet& ids) const {
        std::vector<std::string> subjects;
        for (const auto& message : *messages_) {
            if (ids.contains(message.id)) subjects.push_back(message.subject.str());
        }
        return subjects;
    }

    testing::TemporaryHome home_;
    SharedMessageList messages_;
    const CountByYear indexedByYear_{{2019, 10}, {2020, 1}, {2022, 4}};
    const CountByAccountAndYear indexedByAccount_{{"imap://A", {{2019, 3}}},
                                                  {"imap://B", {{2019, 7}, {2022, 4}}}};
    std::set<std::string> selected_;
    const IndexedYears indexed_{indexedByYear_, indexedByAccount_, selected_};
};

using Titles = std::vector<std::string>;

TEST_F(Organized, AccountsBySizeYearsOldestFirstFoldersByCount) {
    MailAccount big;
    big.urlPrefix = "imap://big";
    big.emailAddress = "big@x";
    const auto overview = overviewOf({{"s1", 2020, "imap://small", "收件箱"},
                                      {"b1", 2021, "imap://big", "乙", 5000},
                                      {"b2", 2019, "imap://big", "甲", 5000},
                                      {"b3", 2021, "imap://big", "甲"},
                                      {"b4", 2021, "imap://big", "甲"},
                                      {"u1", 0, "imap://big", "甲"},
                                      {"n1", 2021, "", "x"},
                                      {"kept", 2021, "imap://big"},
                                      {"gone", 2018, "imap://big"}},
                                     {big});
    ASSERT_EQ(overview->sections.size(), 3U);
    EXPECT_EQ(overview->sections[0].title, "big@x");
    EXPECT_EQ(overview->sections[0].count, 5);
    Titles years;
    for (const auto& year : overview->sections[0].years) years.push_back(std::to_string(year.year));
    EXPECT_EQ(years, (Titles{"2019", "2021", "0"})) << "the undated come last";
    const auto& folders = overview->sections[0].years[1].folders;
    ASSERT_EQ(folders.size(), 2U);
    EXPECT_EQ(folders[0].mailbox, "甲");
    EXPECT_EQ(folders[0].count, 2);
    EXPECT_EQ(folders[1].bytes, 5000);
    EXPECT_EQ(overview->sections[1].title, "imap://small");
    EXPECT_EQ(overview->sections[2].title, "未识别邮箱");
    EXPECT_EQ(overview->candidateCount(), 7);
}

TEST_F(Organized, ALimitOnTheYearLeavesTheUndatedOut) {
    const auto overview = overviewOf({{"a", 2019}, {"b", 2021}, {"c", 0}}, {}, 2020);
    EXPECT_EQ(overview->candidateCount(), 1);
    EXPECT_EQ(screens::deletionSafetyOf(*overview, std::nullopt, {}, indexed_).local, 3);
}

// The same figures as the model's pass over all messages.
TEST_F(Organized, SafetyOfTheTalliesIsThatOfTheMessages) {
    const auto overview = overviewOf({{"a1", 2019},
                                      {"kept1", 2019},
                                      {"kept2", 0},
                                      {"b1", 2019, "imap://B"},
                                      {"n1", 2020, ""},
                                      {"gone1", 2019}});
    SharedTextSet local;
    SharedTextSet archived;
    for (const auto& message : *messages_) {
        if (!message.subject.view().starts_with("gone")) local.insert(message.id);
        if (message.subject.view().starts_with("kept"))
            archived.insert(SharedText("mid:" + message.messageIdentifier->str()));
    }
    const YearByID years = computeMessageYears(*messages_);
    const std::set<std::string> selections[] = {{}, {"imap://A"}, {"imap://B", "legacy-unclassified"}};
    const std::set<std::int64_t> scopes[] = {{}, {2019}, {2022}, {2019, 2020}};
    for (const auto& selected : selections) {
        selected_ = selected;
        for (const auto& scope : scopes) {
            const DeletionSafetyInput input{*messages_, local,          archived,         years,
                                            selected_,  indexedByYear_, indexedByAccount_};
            EXPECT_EQ(screens::deletionSafetyOf(*overview, std::nullopt, scope, indexed_),
                      deletionSafety(input, scope));
        }
    }
    selected_.clear();
    EXPECT_EQ(screens::deletionSafetyOf(*overview, "imap://B", {}, indexed_), (DeletionSafety{1, 0, 10}));
}

TEST_F(Organized, BarsHoldEveryYearOfWhichSomethingIsKnown) {
    const auto overview = overviewOf({{"a1", 2019}, {"kept1", 2019}, {"a2", 2021}, {"u1", 0}});
    EXPECT_EQ(
        screens::yearBars(*overview, std::nullopt, {2021}, indexed_),
        (std::vector<YearBar>{
            {2019, 1, 1, 8, false}, {2020, 0, 0, 1, false}, {2021, 0, 1, 0, true}, {2022, 0, 0, 4, false}}));
    EXPECT_EQ(screens::yearBars(*overview, "imap://A", {}, indexed_),
              (std::vector<YearBar>{{2019, 1, 1, 1, false}, {2021, 0, 1, 0, false}}));
}

TEST_F(Organized, TicksOfYearsAndFoldersAreAUnion) {
    const auto overview = overviewOf({{"a", 2019, "imap://A", "甲"},
                                      {"b", 2019, "imap://A", "乙"},
                                      {"c", 2019, "imap://A", "丙"},
                                      {"d", 2020, "imap://A", "甲"}});
    const OrganizeYearGroup& year = overview->sections[0].years[0];
    const OrganizeFolderRow& folder = year.folders[1];
    OrganizeTicks ticks;

    ticks.setFolder(year, folder, true);
    EXPECT_EQ(ticks.stateOf(year), TickState::mixed);
    ticks.setYear(year, true);
    EXPECT_EQ(ticks.selectionIn(*overview).count, 3) << "each message once";
    EXPECT_EQ(ticks.stateOf(overview->sections[0], {}), TickState::mixed);

    ticks.setFolder(year, folder, false);
    EXPECT_EQ(ticks.stateOf(year), TickState::mixed);
    EXPECT_EQ(ticks.stateOf(year, folder), TickState::off);
    EXPECT_EQ(ticks.selectionIn(*overview).count, 2) << "the others stay ticked";
    EXPECT_EQ(subjectsOf(ticks.organizeSelectedMessageIDs(*overview)).size(), 2U);

    ticks.setFolder(year, folder, true);
    EXPECT_EQ(ticks.selectedOrganizeYearKeys().size(), 1U) << "all folders are the year";
    EXPECT_TRUE(ticks.selectedOrganizeFolderKeys().empty());

    ticks.setAll(*overview, {std::nullopt, 2020}, true);
    EXPECT_EQ(ticks.stateOfAll(*overview, {}), TickState::on);
    ticks.setAll(*overview, {std::nullopt, 2019}, false);
    EXPECT_EQ(ticks.selectionIn(*overview).years, std::set<std::int64_t>{2020});
}

TEST_F(Organized, TicksOfWhatHasGoneAreDropped) {
    const auto before =
        overviewOf({{"a", 2019, "imap://A", "甲"}, {"b", 2019, "imap://A", "乙"}, {"c", 2020}});
    OrganizeTicks ticks;
    ticks.setFolder(before->sections[0].years[0], before->sections[0].years[0].folders[1], true);
    ticks.setYear(before->sections[0].years[1], true);
    EXPECT_FALSE(ticks.prune(*before));
    const auto after =
        overviewOf({{"kept1", 2019, "imap://A", "甲"}, {"b", 2019, "imap://A", "乙"}, {"c", 2020}});
    EXPECT_TRUE(ticks.prune(*after));
    EXPECT_TRUE(ticks.selectedOrganizeFolderKeys().empty());
    EXPECT_EQ(ticks.selectionIn(*after).count, 1);
}

TEST_F(Organized, AStoppedPassGivesNothing) {
    const auto overview = overviewOf({{"a"}});
    std::stop_source stop;
    stop.request_stop();
    const auto ids = std::make_shared<const SharedTextSet>();
    EXPECT_EQ(
        screens::computeOrganizeYearSections(
            {messages_, ids, ids, std::make_shared<const YearByID>(), std::nullopt, {}}, stop.get_token()),
        nullptr);
}

} // namespace
} // namespace corvane
