#include "listing/archive_capacity.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(ArchiveCapacity, IsShortOnlyBelowTheBytesAndTheirMargin) {
    MailMessageRecord message;
    message.messageSize = 2000;
    EXPECT_TRUE(archiveCapacityShortfall({message}, 2299));
    EXPECT_FALSE(archiveCapacityShortfall({message}, 2300));
    EXPECT_FALSE(archiveCapacityShortfall({message}, std::nullopt));
}

} // namespace
} // namespace corvane
