#include "model/corvane_view_model.h"
#include "model/model_test.h"
#include "model/published_messages.h"
#include "platform/files/directory.h"
#include "records/archive_files/archive_index_file.h"

namespace corvane::testing {
namespace {

class ArchiveRuns : public ModelTest {
  protected:
    ArchiveRuns() { waitUntilIdle(context_.tasks); }

    void publish(const std::vector<MessageSketch>& sketches) {
        publishMessages(model_.mail().catalog, sampleMessages(home_, sketches));
        waitUntilIdle(context_.tasks);
    }

    void archive(const std::string& destination, ArchiveRunFlow::Completion completion) {
        run_.archiveSelectedEmails(candidates_.archiveCandidates(), ticks_.selectedArchiveMessageIDs(),
                                   destination, std::move(completion));
    }

    ModelContext context_{platform_};
    CorvaneViewModel model_{context_};
    ArchiveCandidates& candidates_ = model_.archiving().candidates;
    ArchiveTicks& ticks_ = model_.archiving().ticks;
    ArchiveRunFlow& run_ = model_.archiving().archiveRun;
};

SharedTextSet idsOf(const MessageList& messages) {
    SharedTextSet ids;
    for (const auto& message : messages) ids.insert(message.id);
    return ids;
}

TEST_F(ArchiveRuns, CandidatesMadeInTheBackgroundAreThoseOfTheMainThread) {
    publish({{"a", 2019}, {"b", 2020}, {"c", 0}, {"gone", 2019, "imap://A", "INBOX", 400, false}});
    int ready = 0;
    QObject::connect(&candidates_, &ArchiveCandidates::archiveCandidatesReady, [&] { ++ready; });
    candidates_.refreshArchiveCandidatesAsync();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ready, 1);
    const SharedMessageList made = candidates_.archiveCandidates();
    EXPECT_EQ(made->size(), 3U);

    candidates_.refreshArchiveCandidatesAsync();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ready, 2);
    EXPECT_EQ(candidates_.archiveCandidates(), made) << "the same list, not an equal one";

    model_.mail().filters.set(&CandidateFilters::archiveFilterYears, {2019});
    EXPECT_EQ(candidates_.archiveCandidates()->size(), 1U);
}

TEST_F(ArchiveRuns, ALateListOfCandidatesIsDropped) {
    publish({{"a", 2019}, {"b", 2020}});
    int ready = 0;
    QObject::connect(&candidates_, &ArchiveCandidates::archiveCandidatesReady, [&] { ++ready; });
    candidates_.refreshArchiveCandidatesAsync();
    model_.mail().filters.set(&CandidateFilters::archiveFilterYears, {2020});
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ready, 0);
    ASSERT_EQ(candidates_.archiveCandidates()->size(), 1U);
    EXPECT_EQ(candidates_.archiveCandidates()->front().subject, "b");
}

TEST_F(ArchiveRuns, ARunKeepsTheSelectionWithWhichItStarted) {
    publish({{"a"}, {"b"}, {"c"}});
    const std::string root = home_.at("归档");
    const MessageList all = *candidates_.archiveCandidates();
    ticks_.setArchiveSelection(idsOf({all[0], all[1]}));
    std::optional<ArchiveRunFlow::RunOutcome> outcome;
    archive(root, [&](auto result) { outcome = std::move(result); });
    ticks_.toggleArchiveSelection(all[0].id);
    ticks_.toggleArchiveSelection(all[2].id);
    waitUntilIdle(context_.tasks);
    ASSERT_TRUE(outcome && *outcome);
    EXPECT_EQ((*outcome)->archivedCount, 2);
}

TEST_F(ArchiveRuns, ARangeIsTickedFromEitherEnd) {
    publish({{"a"}, {"b"}, {"c"}, {"d"}});
    const MessageList all = *candidates_.archiveCandidates();
    const auto tickedAfter = [&](std::string_view from, std::string_view to) {
        ticks_.selectArchiveRange(from, to);
        waitUntilIdle(context_.tasks);
        return ticks_.selectedArchiveMessages().size();
    };
    EXPECT_EQ(tickedAfter(all[2].id, all[1].id), 2U);
    EXPECT_EQ(tickedAfter(all[0].id, "/no/candidate"), 2U);
    ticks_.selectArchiveRange(all[0].id, all[3].id);
    ticks_.toggleArchiveSelection(all[1].id);
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(ticks_.selectedArchiveMessages().size(), 4U) << "a range is of the ticks at its end";
}

TEST_F(ArchiveRuns, IdsOfNoCandidateAreNeverArchived) {
    publish({{"a"}});
    ticks_.setArchiveSelection(SharedTextSet{SharedText("/somewhere/else.emlx")});
    std::optional<ArchiveRunFlow::RunOutcome> outcome;
    archive(home_.at("归档"), [&](auto result) { outcome = std::move(result); });
    waitUntilIdle(context_.tasks);
    ASSERT_TRUE(outcome);
    EXPECT_FALSE(*outcome);
    EXPECT_FALSE(platform::fileExists(home_.at("归档")));
}

TEST_F(ArchiveRuns, AnOfferReplacesAccountsAndYearsUntilItIsTakenBack) {
    publish({{"a", 2019}, {"b", 2020}, {"c", 0}});
    const MessageList all = *candidates_.archiveCandidates();
    model_.applyHomeScope("imap://other", {2019});
    candidates_.setCandidateOffer(std::make_shared<const SharedTextSet>(idsOf({all[0], all[2]})));
    EXPECT_EQ(candidates_.archiveCandidates()->size(), 2U);
    model_.mail().filters.set(&CandidateFilters::minimumCandidateBytes, 1 << 20);
    EXPECT_TRUE(candidates_.archiveCandidates()->empty()) << "the smallest size still counts";
    model_.mail().filters.set(&CandidateFilters::minimumCandidateBytes, 0);
    candidates_.setCandidateOffer(nullptr);
    EXPECT_TRUE(candidates_.archiveCandidates()->empty());
    model_.applyHomeScope(std::nullopt, {});
    EXPECT_EQ(candidates_.archiveCandidates()->size(), 3U);
}

TEST_F(ArchiveRuns, TheWholeOfferCountsAsSelectedUntilTheSelectionOrTheOfferChanges) {
    publish({{"a"}, {"b"}, {"c"}});
    const SharedTextSet ids = idsOf(*candidates_.archiveCandidates());
    const auto offer = std::make_shared<const SharedTextSet>(ids);
    const std::vector<std::function<void()>> changes = {
        [&] { ticks_.toggleArchiveSelection(ids.begin()->view()); },
        [&] { ticks_.selectNoArchiveCandidates(); },
        [&] { candidates_.setCandidateOffer(nullptr); },
    };
    for (const auto& change : changes) {
        candidates_.setCandidateOffer(offer);
        ticks_.selectWholeOffer();
        EXPECT_TRUE(ticks_.isWholeOfferSelected());
        EXPECT_EQ(ticks_.selectedArchiveMessages().size(), 3U);
        change();
        EXPECT_FALSE(ticks_.isWholeOfferSelected());
    }
}

TEST_F(ArchiveRuns, WhatIsTickedAfterARunIsPrunedAsWell) {
    publish({{"a"}, {"b"}});
    const MessageList all = *candidates_.archiveCandidates();
    const std::string root = home_.at("归档");
    model_.archiving().destinations.setTransferDestination(root);
    ticks_.selectAllArchiveCandidates();
    archive(root, [&](const auto&) {
        ticks_.setArchiveSelection(SharedTextSet{SharedText("/somewhere/else.emlx"), all[0].id});
    });
    waitUntilIdle(context_.tasks);
    EXPECT_TRUE(ticks_.selectedArchiveMessageIDs().empty());
}

TEST_F(ArchiveRuns, ACancelledRunTellsHowManyMessagesItCameTo) {
    std::vector<MessageSketch> sketches;
    for (int number = 0; number < 300; ++number) sketches.push_back({fmt::format("m{}", number)});
    publish(sketches);
    ticks_.selectAllArchiveCandidates();
    std::optional<ArchiveRunFlow::RunOutcome> outcome;
    QObject::connect(&run_, &ArchiveRunFlow::progressChanged, [&] { run_.cancelEmailArchive(); });
    archive(home_.at("归档"), [&](auto result) { outcome = std::move(result); });
    waitUntilIdle(context_.tasks);
    ASSERT_TRUE(outcome && *outcome);
    const EmailArchiveRunResult& result = **outcome;
    EXPECT_TRUE(result.wasCancelled);
    EXPECT_LT(result.triedCount, 300);
    EXPECT_EQ(result.triedCount, result.archivedCount + result.skippedAlreadyArchived + result.failedCount);
}

TEST(ArchiveRunAtTheEnd, TheProgramDoesNotWaitForTheWholeRun) {
    provideEventLoop();
    const TemporaryHome home;
    const ScriptedPlatform platform(home);
    constexpr std::size_t messages = 1500;
    {
        ModelContext context(platform);
        CorvaneViewModel model(context);
        std::vector<MessageSketch> sketches;
        for (std::size_t number = 0; number < messages; ++number)
            sketches.push_back({fmt::format("m{}", number)});
        publishMessages(model.mail().catalog, sampleMessages(home, sketches));
        waitUntilIdle(context.tasks);
        model.archiving().ticks.selectAllArchiveCandidates();
        QEventLoop untilTheRunIsOnItsWay;
        QObject::connect(&model.archiving().archiveRun, &ArchiveRunFlow::progressChanged,
                         &untilTheRunIsOnItsWay, &QEventLoop::quit);
        model.archiving().archiveRun.archiveSelectedEmails(
            model.archiving().candidates.archiveCandidates(),
            model.archiving().ticks.selectedArchiveMessageIDs(), home.at("归档"), [](auto) {});
        untilTheRunIsOnItsWay.exec();
    }
    const auto index = readArchiveIndex(home.at("归档/archive-index.json"));
    ASSERT_TRUE(index);
    EXPECT_LT(index->records.size(), messages);
    for (const ArchivedEmailRecord& record : index->records)
        EXPECT_TRUE(platform::fileExists(home.at("归档/" + record.emlRelativePath.str())));
}

} // namespace
} // namespace corvane::testing
