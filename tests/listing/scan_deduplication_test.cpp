#include "listing/scan_deduplication.h"

#include <vector>

#include <gtest/gtest.h>

#include "listing/message_sketch.h"

namespace corvane::testing {
namespace {

TEST(Deduplication, KeepsThePlaceOfTheFirstAndAllFiles) {
    MailMessageRecord first = make({.id = "/m/a10.emlx", .identifier = "m"});
    MailMessageRecord other = make({.id = "/m/x.emlx", .identifier = "n"});
    MailMessageRecord better = make({.id = "/m/a9.emlx", .identifier = "m", .attachmentSizes = {1}});
    MailMessageRecord tie = make({.id = "/m/a9.emlx", .identifier = "m", .attachmentSizes = {1}});
    const MessageList merged = deduplicatedRecords({first, other, better, tie});
    ASSERT_EQ(merged.size(), 2U);
    EXPECT_EQ(merged[0].id, "/m/a9.emlx");
    EXPECT_EQ(merged[0].relatedMessageFileURLs, (std::vector{FileURL("/m/a9.emlx"), FileURL("/m/a10.emlx")}));
    EXPECT_FALSE(merged[1].relatedMessageFileURLs);
    EXPECT_EQ(deduplicatedRecords(merged), merged) << "a second pass changes nothing";
}

TEST(Deduplication, KeysAreExactForIdentifiersAndLooseWithout) {
    EXPECT_NE(duplicateKey(make({.id = "1", .identifier = "A"})),
              duplicateKey(make({.id = "2", .identifier = "a"})));
    EXPECT_EQ(duplicateKey(make({.id = "1", .subject = " Ärger\n"})),
              duplicateKey(make({.id = "2", .subject = "äRGER"})));
    EXPECT_NE(duplicateKey(make({.id = "1", .date = {}})), duplicateKey(make({.id = "2"})));
    EXPECT_EQ(deduplicatedRecords({make({.id = "1", .date = {}}), make({.id = "2", .date = {}})}).size(), 1U);
    EXPECT_FALSE(isBetterDuplicate(make({.id = "1", .attachmentSizes = {5, 5}}),
                                   make({.id = "2", .attachmentSizes = {10, -1}})));
}

} // namespace
} // namespace corvane::testing
