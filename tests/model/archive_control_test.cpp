#include "model/archiving/archive_control.h"

#include "model/corvane_view_model.h"
#include "model/model_test.h"
#include "model/published_messages.h"
#include "platform/directory.h"
#include "records/stores/archive_index_file.h"

namespace corvane {
namespace {

using testing::ModelTest;
using testing::publishMessages;
using testing::sampleMessages;
using testing::waitUntilIdle;

class ArchiveRuns : public ModelTest {
  protected:
    ArchiveRuns() { waitUntilIdle(context_.tasks); }

    void publish(const std::vector<testing::MessageSketch>& sketches) {
        publishMessages(model_.catalog(), sampleMessages(home_, sketches));
        waitUntilIdle(context_.tasks);
    }

    ModelContext context_{platform_};
    CorvaneViewModel model_{context_};
    ArchiveControl& archive_ = model_.archive();
};

SharedTextSet idsOf(const MessageList& messages) {
    SharedTextSet ids;
    for (const auto& message : messages) ids.insert(message.id);
    return ids;
}

TEST_F(ArchiveRuns, CandidatesMadeInTheBackgroundAreThoseOfTheMainThread) {
    publish({{"a", 2019}, {"b", 2020}, {"c", 0}, {"gone", 2019, "imap://A", "INBOX", 400, false}});
    int ready = 0;
    QObject::connect(&archive_, &ArchiveControl::archiveCandidatesReady, [&] { ++ready; });
    archive_.refreshArchiveCandidatesAsync();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ready, 1);
    const SharedMessageList made = archive_.archiveCandidates();
    EXPECT_EQ(made->size(), 3U);

    archive_.refreshArchiveCandidatesAsync();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ready, 2);
    EXPECT_EQ(archive_.archiveCandidates(), made) << "the same list, not an equal one";

    model_.filters().setArchiveFilterYears({2019});
    EXPECT_EQ(archive_.archiveCandidates()->size(), 1U);
}

TEST_F(ArchiveRuns, ALateListOfCandidatesIsDropped) {
    publish({{"a", 2019}, {"b", 2020}});
    int ready = 0;
    QObject::connect(&archive_, &ArchiveControl::archiveCandidatesReady, [&] { ++ready; });
    archive_.refreshArchiveCandidatesAsync();
    model_.filters().setArchiveFilterYears({2020});
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ready, 0);
    ASSERT_EQ(archive_.archiveCandidates()->size(), 1U);
    EXPECT_EQ(archive_.archiveCandidates()->front().subject, "b");
}

TEST_F(ArchiveRuns, ARunKeepsTheSelectionWithWhichItStarted) {
    publish({{"a"}, {"b"}, {"c"}});
    const std::string root = home_.at("归档");
    const MessageList all = *archive_.archiveCandidates();
    archive_.setArchiveSelection(idsOf({all[0], all[1]}));
    std::optional<ArchiveControl::RunOutcome> outcome;
    archive_.archiveSelectedEmails(root, [&](auto result) { outcome = std::move(result); });
    archive_.toggleArchiveSelection(all[0].id);
    archive_.toggleArchiveSelection(all[2].id);
    waitUntilIdle(context_.tasks);
    ASSERT_TRUE(outcome && *outcome);
    EXPECT_EQ((*outcome)->archivedCount, 2);
}

TEST_F(ArchiveRuns, WhatIsArchivedLeavesCandidatesAndSelection) {
    publish({{"a"}, {"b"}});
    const std::string root = home_.at("归档");
    model_.destinations().setTransferDestination(root);
    waitUntilIdle(context_.tasks);
    EXPECT_GT(model_.destinations().facts().availableBytes.value_or(0), 0);
    archive_.selectFirstArchiveCandidates(1);
    archive_.archiveSelectedEmails(root, [](auto) {});
    waitUntilIdle(context_.tasks);
    ASSERT_EQ(archive_.archiveCandidates()->size(), 1U);
    EXPECT_EQ(archive_.archiveCandidates()->front().subject, "b");
    EXPECT_TRUE(archive_.selectedArchiveMessageIDs().empty());
}

TEST_F(ArchiveRuns, ARangeIsTickedFromEitherEnd) {
    publish({{"a"}, {"b"}, {"c"}, {"d"}});
    const MessageList all = *archive_.archiveCandidates();
    archive_.selectArchiveRange(all[2].id, all[1].id);
    EXPECT_EQ(archive_.selectedArchiveMessages().size(), 2U);
    archive_.selectArchiveRange(all[0].id, "/no/candidate");
    EXPECT_EQ(archive_.selectedArchiveMessages().size(), 2U);
    archive_.selectArchiveRange(all[0].id, all[3].id);
    EXPECT_EQ(archive_.selectedArchiveMessages().size(), 4U);
}

TEST_F(ArchiveRuns, IdsOfNoCandidateAreNeverArchived) {
    publish({{"a"}});
    archive_.setArchiveSelection({SharedText("/somewhere/else.emlx")});
    std::optional<ArchiveControl::RunOutcome> outcome;
    archive_.archiveSelectedEmails(home_.at("归档"), [&](auto result) { outcome = std::move(result); });
    ASSERT_TRUE(outcome);
    EXPECT_FALSE(*outcome);
    EXPECT_FALSE(platform::fileExists(home_.at("归档")));
}

TEST_F(ArchiveRuns, AnOfferReplacesAccountsAndYearsUntilItIsTakenBack) {
    publish({{"a", 2019}, {"b", 2020}, {"c", 0}});
    const MessageList all = *archive_.archiveCandidates();
    model_.applyHomeScope("imap://other", {2019});
    archive_.setCandidateOffer(std::make_shared<const SharedTextSet>(idsOf({all[0], all[2]})));
    EXPECT_EQ(archive_.archiveCandidates()->size(), 2U);
    model_.filters().setMinimumCandidateBytes(1 << 20);
    EXPECT_TRUE(archive_.archiveCandidates()->empty()) << "the smallest size still counts";
    model_.filters().setMinimumCandidateBytes(0);
    archive_.setCandidateOffer(nullptr);
    EXPECT_TRUE(archive_.archiveCandidates()->empty());
    model_.applyHomeScope(std::nullopt, {});
    EXPECT_EQ(archive_.archiveCandidates()->size(), 3U);
}

TEST_F(ArchiveRuns, TheWholeOfferCountsAsSelectedUntilTheSelectionOrTheOfferChanges) {
    publish({{"a"}, {"b"}, {"c"}});
    const SharedTextSet ids = idsOf(*archive_.archiveCandidates());
    const auto offer = std::make_shared<const SharedTextSet>(ids);
    const std::vector<std::function<void()>> changes = {
        [&] { archive_.toggleArchiveSelection(ids.begin()->view()); },
        [&] { archive_.selectNoArchiveCandidates(); },
        [&] { archive_.selectArchiveRange(ids.begin()->view(), ids.begin()->view()); },
        [&] { archive_.setCandidateOffer(nullptr); },
    };
    for (const auto& change : changes) {
        archive_.setCandidateOffer(offer);
        archive_.selectWholeOffer(ids);
        EXPECT_TRUE(archive_.isWholeOfferSelected());
        EXPECT_EQ(archive_.selectedArchiveMessages().size(), 3U);
        change();
        EXPECT_FALSE(archive_.isWholeOfferSelected());
    }
}

TEST_F(ArchiveRuns, WhatIsTickedAfterARunIsPrunedAsWell) {
    publish({{"a"}, {"b"}});
    const MessageList all = *archive_.archiveCandidates();
    const std::string root = home_.at("归档");
    model_.destinations().setTransferDestination(root);
    archive_.selectAllArchiveCandidates();
    archive_.archiveSelectedEmails(root, [&](const auto&) {
        archive_.setArchiveSelection({SharedText("/somewhere/else.emlx"), all[0].id});
        archive_.pruneArchiveSelection();
        EXPECT_EQ(archive_.selectedArchiveMessageIDs().size(), 1U);
    });
    waitUntilIdle(context_.tasks);
    EXPECT_TRUE(archive_.selectedArchiveMessageIDs().empty());
}

TEST_F(ArchiveRuns, ACancelledRunTellsHowManyMessagesItCameTo) {
    std::vector<testing::MessageSketch> sketches;
    for (int number = 0; number < 300; ++number) sketches.push_back({fmt::format("m{}", number)});
    publish(sketches);
    archive_.selectAllArchiveCandidates();
    std::optional<ArchiveControl::RunOutcome> outcome;
    QObject::connect(&archive_, &ArchiveControl::progressChanged, [&] { archive_.cancelEmailArchive(); });
    archive_.archiveSelectedEmails(home_.at("归档"), [&](auto result) { outcome = std::move(result); });
    waitUntilIdle(context_.tasks);
    ASSERT_TRUE(outcome && *outcome);
    const EmailArchiveRunResult& result = **outcome;
    EXPECT_TRUE(result.wasCancelled);
    EXPECT_LT(result.triedCount, 300);
    EXPECT_EQ(result.triedCount, result.archivedCount + result.skippedAlreadyArchived + result.failedCount);
}

TEST(ArchiveRunAtTheEnd, TheProgramDoesNotWaitForTheWholeRun) {
    testing::provideEventLoop();
    const testing::TemporaryHome home;
    const testing::ScriptedPlatform platform(home);
    constexpr std::size_t messages = 1500;
    {
        ModelContext context(platform);
        CorvaneViewModel model(context);
        std::vector<testing::MessageSketch> sketches;
        for (std::size_t number = 0; number < messages; ++number)
            sketches.push_back({fmt::format("m{}", number)});
        publishMessages(model.catalog(), sampleMessages(home, sketches));
        waitUntilIdle(context.tasks);
        model.archive().selectAllArchiveCandidates();
        QEventLoop untilTheRunIsOnItsWay;
        QObject::connect(&model.archive(), &ArchiveControl::progressChanged, &untilTheRunIsOnItsWay,
                         &QEventLoop::quit);
        model.archive().archiveSelectedEmails(home.at("归档"), [](auto) {});
        untilTheRunIsOnItsWay.exec();
    }
    const auto index = readArchiveIndex(home.at("归档/archive-index.json"));
    ASSERT_TRUE(index);
    EXPECT_LT(index->records.size(), messages);
    for (const ArchivedEmailRecord& record : index->records)
        EXPECT_TRUE(platform::fileExists(home.at("归档/" + record.emlRelativePath.str())));
}

} // namespace
} // namespace corvane
