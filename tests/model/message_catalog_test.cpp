#include "model/mail/messages/message_catalog.h"

#include "model/corvane_view_model.h"
#include <filesystem>

#include "model/model_test.h"
#include "records/stores/scan_cache_store.h"
#include "support/sample_messages.h"

namespace corvane::testing {
namespace {

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

TEST_F(Catalog, OnlyAWholeListIsCachedAndOnlyOnceAsItIs) {
    const MailScanCacheStore store(context_.support);
    for (const bool isWhole : {false, true}) {
        auto messages = std::make_shared<const MessageList>(sampleMessages(home_, {{"a"}, {"b"}}));
        availableAfter(MessageSet::make(std::move(messages), isWhole), MessageCatalog::Files::justSeen);
        catalog_.saveCacheIfDue({});
        waitUntilIdle(context_.tasks);
        EXPECT_EQ(store.load().has_value(), isWhole);
    }
    std::filesystem::remove(context_.support.filePath("last-scan-cache.json"));
    catalog_.refreshAvailabilityCacheAsync(true);
    waitUntilIdle(context_.tasks);
    catalog_.saveCacheIfDue({});
    waitUntilIdle(context_.tasks);
    EXPECT_FALSE(store.load().has_value()) << "the same state isn't written again";
}

// Sizes tell whether everything is available, so a cache must not count what isn't in its list.
TEST_F(Catalog, ACacheThatNamesForeignIdsMakesNothingAvailable) {
    const auto messages = sampleMessages(home_, {{"a"}, {"b"}});
    const std::vector<SharedText> ids = {messages[0].id, "/elsewhere/1.emlx", "/elsewhere/1.emlx"};
    MailScanCacheStore(context_.support).save(messages, {}, &ids, nullptr, nullptr);
    CorvaneViewModel model(context_);
    model.mail().scanFlow.loadCachedScanIfNeeded(false);
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(model.mail().catalog.messages()->size(), 2U);
    ASSERT_EQ(model.mail().visible.visibleMessages()->size(), 1U);
    EXPECT_EQ(model.mail().visible.visibleMessages()->front().subject, "a");
}

} // namespace
} // namespace corvane::testing
