#include "listing/archive_capacity.h"

#include <gtest/gtest.h>

#include "support/scripted_platform.h"

namespace corvane {
namespace {

TEST(ArchiveCapacity, IsShortOnlyBelowTheBytesAndTheirMargin) {
    const testing::TemporaryHome home;
    testing::ScriptedPlatform platform(home);
    MailMessageRecord message;
    message.messageSize = 2000;
    for (const auto& [capacity, isShort] : {std::pair(2299, true), std::pair(2300, false)}) {
        platform.capacity = capacity;
        EXPECT_EQ(archiveCapacityShortfall({message}, home.path(), platform).has_value(), isShort)
            << capacity;
    }
}

} // namespace
} // namespace corvane
