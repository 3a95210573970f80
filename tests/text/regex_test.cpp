#include "text/regex.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace corvane::text {
namespace {

std::vector<std::string> matchTexts(const Regex& regex, std::string_view text) {
    std::vector<std::string> texts;
    for (const RegexMatch& match : regex.allMatches(text)) texts.emplace_back(match.group(0, text));
    return texts;
}

TEST(Regex, RangesAreBytesOfTheSearchedText) {
    const std::string_view text = "主题: =?utf-8?B?5L2g?= 😀=?GBK?q?=C4=E3?=";
    const auto matches = Regex(R"(=\?([^?]+)\?([BQbq])\?([^?]+)\?=)").allMatches(text);
    ASSERT_EQ(matches.size(), 2U);
    EXPECT_EQ(matches[0].start(), text.find("=?utf"));
    EXPECT_EQ(matches[0].group(3, text), "5L2g");
    EXPECT_EQ(matches[1].start(), text.find("=?GBK"));
    EXPECT_EQ(matches[1].start() + matches[1].length(), text.size());
    EXPECT_EQ(matches[1].group(1, text), "GBK");
    EXPECT_EQ(matches[1].groups.size(), 4U);
}

TEST(Regex, AGroupThatTookNoPartHasNoValue) {
    const Regex name(R"rx((?i)(?:^|;)\s*name\s*=\s*(?:"([^"]*)"|([^;\r\n]+)))rx");
    const std::string_view quoted = R"(text/plain; NAME="")";
    const auto first = name.firstMatch(quoted);
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->groups[1].has_value());
    EXPECT_FALSE(first->groups[2].has_value());
    EXPECT_EQ(first->group(2, quoted), "");
    EXPECT_EQ(name.firstMatch("filename=x"), std::nullopt);
    EXPECT_EQ(name.firstMatch(""), std::nullopt);
}

TEST(Regex, WalksOverEmptyMatchesAndIllFormedBytes) {
    EXPECT_EQ(matchTexts(Regex("b*"), "a文bb"), (std::vector<std::string>{"", "", "bb", ""}));
    EXPECT_EQ(matchTexts(Regex("[ab]+"), "a\xFF\xE4\xB8"
                                         "ab\xC3"),
              (std::vector<std::string>{"a", "ab"}));
    EXPECT_EQ(matchTexts(Regex("."), "a\xFF\xE4\xB8"
                                     "b"),
              (std::vector<std::string>{"a", "\xFF", "\xE4\xB8", "b"}));
}

TEST(Regex, ReplacesMatchesAndKeepsTheRestByteForByte) {
    struct Case {
        const char* pattern;
        std::string_view text;
        const char* replacement;
        std::string_view result;
    };

    const Case cases[] = {
        {R"([ \t\f\v]+)", "一\t 二  三\xFF ", " ", "一 二 三\xFF "},
        {R"(\n{3,})", "a\n\n\n\nb\n\nc", "\n\n", "a\n\nb\n\nc"},
        {"x", "none", "$0", "none"},
        {"(\\w)(\\d)?", "a1 b", "<$2$1>", "<1a> <b>"},
        {"(a)", "a", "$12", "a2"},
        {"a", "a", R"(\$0\\\n)", R"($0\n)"},
        {"$", "end", "!", "end!"},
        {"", "文", "-", "-文-"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(Regex(each.pattern).replacingAll(each.text, each.replacement), each.result) << each.pattern;
    for (const char* wrong : {"$", "$x", "$2"})
        EXPECT_THROW((void)Regex("(a)").replacingAll("a", wrong), std::invalid_argument) << wrong;
}

TEST(Regex, RefusesPatternsThatDontCompile) {
    for (const char* pattern : {"(", "[a", "a{2,1}", "\\", "(?<n>a)\\k<m>", "*"})
        EXPECT_THROW(Regex{pattern}, std::invalid_argument) << pattern;
}

TEST(Regex, EscapedTextMatchesItselfAlone) {
    for (char character = 1; character < 0x7F; ++character) {
        const std::string literal = std::string("a") + character + "文";
        const Regex regex("^(?:" + Regex::escaped(literal) + ")$");
        EXPECT_TRUE(regex.firstMatch(literal)) << literal;
        EXPECT_FALSE(regex.firstMatch("a文")) << literal;
        EXPECT_FALSE(regex.firstMatch("aa文" + literal)) << literal;
        EXPECT_TRUE(Regex("[" + Regex::escaped(literal) + "]").firstMatch(std::string(1, character)))
            << literal;
    }
}

TEST(Regex, HostileTextEndsTheSearchAndHarmsNoLaterOne) {
    const Regex regex("(a+)+b");
    const std::string hostile(100'000, 'a');
    EXPECT_FALSE(regex.firstMatch(hostile));
    EXPECT_TRUE(regex.firstMatch("caab"));
    EXPECT_EQ(regex.replacingAll(hostile, ""), hostile);

    // Each start costs a walk to the end, and matches in the end: bounded over all matches together.
    EXPECT_LT(Regex("x.*?y|x").allMatches(std::string(100'000, 'x')).size(), 100'000U);
    // As much backtracking state as text.
    EXPECT_FALSE(Regex("(?:a|b)*c").firstMatch(std::string(4'000'000, 'a')));
}

TEST(Regex, FindsEveryMatchOfALongHonestText) {
    std::string text;
    for (int line = 0; line < 50'000; ++line) text += "收件人 name = value 42; ";
    EXPECT_EQ(Regex(R"((?i)(\w+?)\s*=\s*([^;\r\n]+))").allMatches(text).size(), 50'000U);
}

} // namespace
} // namespace corvane::text
