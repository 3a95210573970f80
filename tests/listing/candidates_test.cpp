#include "listing/candidates.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "listing/availability.h"
#include "support/sample_messages.h"

namespace corvane {
namespace {

class Candidates : public ::testing::Test {
  protected:
    [[nodiscard]] std::string namesOf(const CandidateInputs& inputs) const {
        std::string names;
        const SharedMessageList candidates = makeCandidates(inputs);
        for (const MailMessageRecord& message : *candidates) names += message.subject.view();
        return names;
    }

    [[nodiscard]] std::shared_ptr<const SharedTextSet> idsOf(std::string_view names) const {
        auto ids = std::make_shared<SharedTextSet>();
        for (const MailMessageRecord& message : *inputs_.messages) {
            if (names.contains(message.subject.view())) ids->insert(message.id);
        }
        return ids;
    }

    testing::TemporaryHome home_;
    // "k" is archived, "g" has no file, "u" no date, "n" no account, "t" is in the trash.
    const SharedMessageList messages_ = std::make_shared<const MessageList>(
        testing::sampleMessages(home_, {{"a", 2019},
                                        {"b", 2021, "imap://B"},
                                        {"k", 2019},
                                        {.name = "g", .hasFile = false},
                                        {"u", 0},
                                        {"n", 2020, ""},
                                        {"t", 2020, "imap://A", "Trash"},
                                        {"s", 2020, "imap://A", "INBOX", 90}}));
    const std::shared_ptr<const SharedTextSet> archived_ =
        std::make_shared<const SharedTextSet>(SharedTextSet{"mid:k@example.org"});
    CandidateInputs inputs_{.messages = messages_,
                            .rules = {},
                            .offer = nullptr,
                            .locallyAvailableIDs = nullptr,
                            .archivedMessageIDs = nullptr,
                            .archivedBaseIDs = archived_,
                            .yearByID = nullptr};
};

// Whether what is needed is known or has to be found out, listed or counted: the candidates are the same.
TEST_F(Candidates, AreThoseOfTheRulesHoweverTheyAreFound) {
    CandidateInputs known = inputs_;
    known.locallyAvailableIDs = idsOf("abkunts");
    known.archivedMessageIDs = idsOf("k");
    known.archivedBaseIDs = nullptr;
    known.yearByID = std::make_shared<const YearByID>(computeMessageYears(*messages_));
    const std::vector<std::pair<CandidateRules, std::string>> cases = {
        {{}, "abunts"},
        {{.minimumBytes = 400}, "abunt"},
        {{.maximumYear = 2020}, "ants"},
        {{.accountPrefixes = {"imap://B", "legacy-unclassified"}}, "bn"},
        {{.years = {2019, 2021}}, "ab"},
        {{.maximumYear = 2020, .accountPrefixes = {"imap://A"}, .years = {2020, 2021}}, "ts"}};
    for (const auto& [rules, expected] : cases) {
        known.rules = inputs_.rules = rules;
        EXPECT_EQ(namesOf(known), expected);
        EXPECT_EQ(namesOf(inputs_), expected);
        EXPECT_EQ(countCandidates(inputs_), expected.size());
    }
}

TEST_F(Candidates, OfAnOfferNeedNotPassAccountsAndYears) {
    inputs_.offer = idsOf("akgu");
    inputs_.rules = {.accountPrefixes = {"imap://B"}, .years = {2021}};
    EXPECT_EQ(namesOf(inputs_), "au");
    inputs_.rules.maximumYear = 2020;
    EXPECT_EQ(namesOf(inputs_), "a");
    inputs_.locallyAvailableIDs = std::make_shared<const SharedTextSet>();
    EXPECT_EQ(namesOf(inputs_), "") << "an empty set isn't an unknown one";
}

TEST_F(Candidates, AreCountedByTheStatisticsButForTrashAndTheUndated) {
    const AvailabilityJob job{
        MessageSet::make(messages_, true), {archived_, {.minimumBytes = 400}, {}, {}}, nullptr};
    const auto result = computeAvailability(job);
    ASSERT_TRUE(result);
    EXPECT_EQ(*result->locallyAvailableIDs, *idsOf("abkunts"));
    EXPECT_EQ(result->localCount, 5);
    std::string years;
    for (const YearStat& stat : result->localYearStats)
        years += fmt::format("{}:{} ", stat.year, stat.messageCount);
    EXPECT_EQ(years, "2021:1 2020:1 2019:1 ");

    AvailabilityJob ofAnotherVersion = job;
    ofAnotherVersion.mailVersion = "V11";
    EXPECT_TRUE(computeAvailability(ofAnotherVersion)->locallyAvailableIDs->empty());
    MailMessageRecord message;
    message.fileURL = FileURL(SharedText("/Volumes/V11/Mail/V10/1.emlx"));
    EXPECT_TRUE(isOfMailVersion(message, "V10"));
    EXPECT_FALSE(isOfMailVersion(message, "V11"));
}

} // namespace
} // namespace corvane
