#include "library/entry_handles.h"

#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "library/entry_sketch.h"

namespace corvane::testing {
namespace {

using Positions = std::vector<EntryPosition>;

TEST(EntryHandles, NameEachEntryAsShortAsCanBe) {
    std::vector<EntrySketch> sketches;
    for (int number = 0; number < 20'000; ++number) sketches.push_back({.id = fmt::format("m{}", number)});
    const auto entries = makeEntries(sketches);
    const EntryHandles handles(*entries);
    EXPECT_EQ(entryHandle("abc"), "ba7816bf8f01cfea"); // the first vector of FIPS 180-2
    std::size_t longest = 0;
    for (EntryPosition position = 0; position < entries->size(); ++position) {
        const std::string shortest = handles.shortest(position);
        ASSERT_TRUE(entryHandle((*entries)[position].id()).starts_with(shortest));
        longest = std::max(longest, shortest.size());
        if (shortest.size() == shortestHandleDigits && position % 100 != 0)
            continue; // a look is a pass over all
        ASSERT_EQ(handles.find(shortest), Positions{position});
        // One digit less names others as well, or is too short to name anything.
        const Positions fewer = handles.find(shortest.substr(0, shortest.size() - 1));
        ASSERT_EQ(fewer.empty(), shortest.size() == shortestHandleDigits);
        ASSERT_NE(fewer.size(), 1U);
    }
    EXPECT_GT(longest, shortestHandleDigits); // 20,000 handles, and 16 million of six digits
}

TEST(EntryHandles, IdsGoBeforeHandles) {
    const std::string handle = entryHandle("/r\x01"
                                           "a");
    const auto entries =
        makeEntries({{.id = "a"}, {.id = "a", .root = "/q"}, {.id = "ABCDEF"}, {.id = handle}});
    const EntryHandles handles(*entries);
    const std::pair<std::string, Positions> cases[] = {{"/q\x01"
                                                        "a",
                                                        {1}},
                                                       {"a", {0, 1}},
                                                       {"ABCDEF", {2}},
                                                       {handle, {3}},
                                                       {handle.substr(0, 15), {0}},
                                                       {"", {}},
                                                       {"ba78", {}},
                                                       {"-abcdef", {}},
                                                       {"abcdeg", {}},
                                                       {"00112233445566778", {}},
                                                       {"ffffffffffffffff", {}}};
    for (const auto& [name, positions] : cases) EXPECT_EQ(handles.find(name), positions) << name;
}

} // namespace
} // namespace corvane::testing
