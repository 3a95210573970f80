#include "listing/deletion/organize_sections.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "listing/deletion/organize_ticks.h"
#include "support/sample_messages.h"

namespace corvane::testing {
namespace {

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
        return computeOrganizeYearSections({messages_, local, archived,
                                            std::make_shared<const YearByID>(computeMessageYears(*messages_)),
                                            maximumYear, std::move(accounts)});
    }

    [[nodiscard]] std::vector<std::string> subjectsOf(const SharedTextSet& ids) const {
        std::vector<std::string> subjects;
        for (const auto& message : *messages_) {
            if (ids.contains(message.id)) subjects.push_back(message.subject.str());
        }
        return subjects;
    }

    TemporaryHome home_;
    SharedMessageList messages_;
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
    EXPECT_EQ(overview->tallies.at("imap://A").size(), 3U) << "they are on this machine all the same";
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
        computeOrganizeYearSections(
            {messages_, ids, ids, std::make_shared<const YearByID>(), std::nullopt, {}}, stop.get_token()),
        nullptr);
}

} // namespace
} // namespace corvane::testing
