#include "text/shared_text.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(SharedText, OutlivesEveryOtherOwner) {
    SharedText kept;
    {
        const SharedText original(std::string_view("收件箱\0x", 11));
        kept = original;
        EXPECT_TRUE(kept.sharesWith(original));
    }
    EXPECT_EQ(kept.view(), std::string_view("收件箱\0x", 11));
    EXPECT_EQ(kept.c_str()[11], '\0');
    SharedText& alias = kept;
    kept = alias;
    EXPECT_EQ(kept.size(), 11U);
    const SharedText moved = std::move(kept);
    EXPECT_EQ(kept, ""); // NOLINT: a moved-from text is promised to be empty
    EXPECT_EQ(moved.size(), 11U);
}

TEST(SharedText, ThreadsCopyAndDropOneTextTogether) {
    const SharedText text("共享");
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([text] {
            std::vector<SharedText> copies;
            for (int round = 0; round < 10'000; ++round) copies.push_back(text);
            EXPECT_EQ(copies.back(), "共享");
        });
    }
}

TEST(SharedText, InternerJoinsEqualTexts) {
    TextInterner intern;
    const std::string mailbox = "INBOX";
    EXPECT_TRUE(intern(mailbox).sharesWith(intern("INBOX")));
    EXPECT_FALSE(intern("INBOX").sharesWith(intern("inbox")));
    EXPECT_TRUE(intern("").empty());
}

} // namespace
} // namespace corvane
