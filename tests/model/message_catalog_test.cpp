#include "model/message_catalog.h"

#include "model/model_test.h"
#include "model/sample_messages.h"

namespace corvane {
namespace {

using testing::ModelTest;
using testing::sampleMessages;
using testing::waitUntilIdle;

struct Catalog : ModelTest {
    Catalog() { waitUntilIdle(context_.tasks); }

    std::size_t availableAfter(const SharedMessageSet& set, MessageCatalog::Files files) {
        catalog_.setMessages(set, {}, files);
        waitUntilIdle(context_.tasks);
        return catalog_.locallyAvailableIDs()->size();
    }

    ModelContext context_{platform_};
    MessageCatalog catalog_{context_, [] { return AvailabilityInputs(); }};
};

TEST_F(Catalog, FilesThatAScanHasSeenAreLookedForAgainOnlyWhenTheListComesBackLater) {
    auto messages = sampleMessages(home_, {{"a"}, {.name = "gone", .hasFile = false}});
    const auto set = MessageSet::make(std::make_shared<const MessageList>(std::move(messages)), false);
    EXPECT_EQ(availableAfter(set, MessageCatalog::Files::justSeen), 2U);
    EXPECT_EQ(availableAfter(set, MessageCatalog::Files::unknown), 1U);
    EXPECT_EQ(catalog_.messageByID(set->messages->back().id)->subject, "gone");
    EXPECT_EQ(catalog_.messageByID("elsewhere"), nullptr);
}

} // namespace
} // namespace corvane
