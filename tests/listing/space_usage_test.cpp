#include "listing/space_usage.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "listing/message_sketch.h"

namespace corvane::testing {
namespace {

TEST(SpaceUsage, TakesSendersApart) {
    const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
        {" \"张三\" <Zhang@Example.COM> ", "zhang@example.com", "张三"},
        {"<A@b>", "a@b", "a@b"},
        {"Plain Name", "plain name", "Plain Name"},
        {"a <b> <C@d>", "c@d", "a <b>"},
        {"> odd <", "> odd <", "> odd <"},
        {"name <>", "name <>", "name <>"}};
    for (const auto& [sender, key, display] : cases) {
        EXPECT_EQ(spaceSenderParts(sender), (SpaceSenderParts{key, display})) << sender;
    }
}

TEST(SpaceUsage, SeparatesLocalFromServerOnlyAndKeepsTheLargestSenders) {
    std::vector<Sketch> sketches = {{.id = "gone", .size = 1000},
                                    {.id = "a", .size = 7, .sender = "x@y"},
                                    {.id = "b", .size = 7, .sender = "Name <x@y>"},
                                    {.id = "c", .account = "", .size = 1}};
    for (int number = 0; number < 210; ++number) {
        sketches.push_back({.id = "s" + std::to_string(number),
                            .account = "imap://B",
                            .size = 1,
                            .sender = "s" + std::to_string(number) + "@z"});
    }
    const MessageList messages = makeAll(sketches);
    SharedTextSet available;
    for (const auto& message : messages) {
        if (message.id != "gone") available.insert(message.id);
    }
    const auto usages = computeSpaceUsage(messages, &available, {});
    ASSERT_EQ(usages.size(), 3U);
    EXPECT_EQ(usages[0].topSenders.size(), 200U);
    EXPECT_EQ(usages[1].cloudOnlyBytes, 1000);
    EXPECT_EQ(usages[1].topSenders, (std::vector{SpaceSenderStat{"x@y", "Name", 2, 14}}));
    EXPECT_EQ(usages[2].accountPrefix, "legacy-unclassified");
    EXPECT_EQ(computeSpaceUsage(messages, nullptr, {})[0].localBytes, 1014)
        << "all are local while nothing is known";
}

} // namespace
} // namespace corvane::testing
