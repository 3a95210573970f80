#include "listing/visible_list.h"

#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "listing/message_sketch.h"

namespace corvane::testing {
namespace {

TEST(VisibleMessages, PassEveryRule) {
    const MessageList messages =
        makeAll({{.id = "a", .date = 1, .size = 5, .attachmentSizes = {1}, .subject = "ÄB"},
                 {.id = "b", .date = newYear2024, .account = std::nullopt, .size = 9},
                 {.id = "c", .date = {}, .size = 9},
                 {.id = "gone"}});
    ListInput input{std::make_shared<const MessageList>(messages),
                    std::make_shared<const SharedTextSet>(SharedTextSet{"a", "b", "c"}),
                    std::make_shared<const SharedTextSet>(SharedTextSet{"b"}),
                    std::make_shared<const YearByID>(computeMessageYears(messages))};
    const auto shown = [&](const std::function<void(ListRules&)>& change) {
        ListRules rules;
        change(rules);
        std::string ids;
        const auto list = makeVisibleMessages(input, rules);
        for (const auto& message : *list) ids += message.id.view();
        return ids;
    };
    EXPECT_EQ(shown([](auto&) {}), "bac");
    EXPECT_EQ(shown([](auto& rules) { rules.ascending = true; }), "abc");
    EXPECT_EQ(shown([](auto& rules) { rules.sortMode = MailSortMode::messageSize; }), "bca");
    EXPECT_EQ(shown([](auto& rules) { rules.accountPrefixes = {"legacy-unclassified"}; }), "b");
    EXPECT_EQ(shown([](auto& rules) { rules.minimumAttachmentCount = 1; }), "a");
    EXPECT_EQ(shown([](auto& rules) { rules.newestYear = 1990; }), "a");
    EXPECT_EQ(shown([](auto& rules) { rules.migrated = MigratedFilter::onlyMigrated; }), "b");
    EXPECT_EQ(shown([](auto& rules) { rules.migrated = MigratedFilter::notMigrated; }), "ac");
    EXPECT_EQ(shown([](auto& rules) { rules.query = "äb"; }), "a");
    EXPECT_EQ(shown([](auto& rules) { rules.query = "文件"; }), "a");
    const MessageList inOrder = *makeVisibleMessages(input, {});
    input.messages = std::make_shared<const MessageList>(inOrder);
    EXPECT_EQ(makeVisibleMessages(input, {}), input.messages) << "what is as it should be isn't copied";
    input.locallyAvailableIDs = std::make_shared<const SharedTextSet>();
    EXPECT_EQ(shown([](auto&) {}), "") << "nothing is listed while availability isn't known";
}

} // namespace
} // namespace corvane::testing
