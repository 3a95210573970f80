#include "model/archive_control.h"

#include "model/corvane_view_model.h"
#include "model/model_test.h"
#include "model/sample_messages.h"
#include "platform/directory.h"

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

TEST_F(ArchiveRuns, IdsOfNoCandidateAreNeverArchived) {
    publish({{"a"}});
    archive_.setArchiveSelection({SharedText("/somewhere/else.emlx")});
    std::optional<ArchiveControl::RunOutcome> outcome;
    archive_.archiveSelectedEmails(home_.at("归档"), [&](auto result) { outcome = std::move(result); });
    ASSERT_TRUE(outcome);
    EXPECT_FALSE(*outcome);
    EXPECT_FALSE(platform::fileExists(home_.at("归档")));
}

} // namespace
} // namespace corvane
