#include "mime/body/body_snippets.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "mime/body/body_split.h"
#include "support/repeated_text.h"

namespace corvane::mime {
namespace {

using testing::repeated;

const std::string sig(signatureMarker);
const std::string quote(quoteMarker);

TEST(BodySnippets, PreviewIsOneLineWithoutMarkers) {
    const std::string tail = repeated("中", 400);
    const std::optional<std::string> none;
    EXPECT_EQ(rowPreviewText(""), none);
    EXPECT_EQ(rowPreviewText(" \n" + sig + quote + "\uF0F0\u3000"), none);
    EXPECT_EQ(rowPreviewText(repeated(" ", 4000) + "a"), none); // only the beginning is looked at
    EXPECT_EQ(rowPreviewText("\n a\t\n\u3000b" + sig + "c \uF0F1d "), "a bc d");
    EXPECT_EQ(rowPreviewText("x" + tail), "x" + repeated("中", 299));
    EXPECT_EQ(rowPreviewText(repeated("a", 3997) + sig), repeated("a", 300));
}

TEST(BodySnippets, SnippetsShowTheFirstMatchInItsSurroundings) {
    struct Case {
        std::string text;
        std::string query;
        std::optional<std::string> snippet;
    };

    const std::string left = repeated("左", 30);
    const std::string right = repeated("右", 80);
    const std::string longQuery = repeated("q", 100);
    const Case cases[] = {
        {"abc", " \u3000", {}},
        {"abc", "x", {}},
        {"", "x", {}},
        {"a contract b", " CONTRACT ", "a contract b"},
        {left + "合同" + right, "合同", "…" + repeated("左", 24) + "合同" + repeated("右", 64) + "…"},
        {repeated("左", 24) + "合同" + repeated("右", 64), "合同",
         repeated("左", 24) + "合同" + repeated("右", 64)},
        {"合同\n\n一" + sig + "二", "合同", "合同 一 二"},
        {"a\n" + longQuery + "bc", longQuery, "a " + longQuery + "…"}, // no room is left behind
        {repeated("e\u0301", 30) + "x", "X", "…" + repeated("e\u0301", 24) + "x"},
    };
    for (const Case& one : cases) {
        const auto made = snippet(one.text, one.query);
        EXPECT_EQ(made ? std::optional(made->text) : std::nullopt, one.snippet) << one.query;
    }
    const auto made = snippet("Contract: the contract", "contract");
    EXPECT_EQ(made->highlighted, (std::vector<text::ByteRange>{{0, 8}, {14, 8}}));
    EXPECT_EQ(searchHighlights("合同 A合同", " 合同 "), (std::vector<text::ByteRange>{{0, 6}, {8, 6}}));
    EXPECT_TRUE(searchHighlights("text", " ").empty());
}

TEST(BodySnippets, AreNeededWhereTheRowItselfShowsNoMatch) {
    const std::vector<std::string> names = {"Plan.PDF"};
    EXPECT_TRUE(needsBodySnippet("合同", "主题", "a@b", names));
    for (const std::string_view query : {"", "  ", "主", " A@B ", "plan"})
        EXPECT_FALSE(needsBodySnippet(query, "主题", "a@b", names)) << query;
}

} // namespace
} // namespace corvane::mime
