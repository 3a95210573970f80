#include "text/case_search.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace corvane::text {
namespace {

std::vector<std::string> found(std::string_view text, std::string_view part) {
    std::vector<std::string> places;
    for (const ByteRange& range : rangesIgnoringCase(text, part))
        places.emplace_back(text.substr(range.start, range.length));
    return places;
}

TEST(CaseSearch, FindsWholeCharactersAsTheyAreWritten) {
    struct Case {
        std::string_view text;
        std::string_view part;
        std::vector<std::string> places;
    };

    const Case cases[] = {
        {"", "a", {}},
        {"abc", "", {}},
        {"Re: RE: re", "re", {"Re", "RE", "re"}},
        {"aaaa", "AA", {"aa", "aa"}},
        {"中文ÄÖ中文äö", "äö", {"ÄÖ", "äö"}},
        {"Straße STRASSE", "strasse", {"Straße", "STRASSE"}},
        {"Straße", "s", {"S"}}, // the folded "ß" is one character
        {"ßs", "ss", {"ß"}},
        {"K2 \u212A2", "k2", {"K2", "\u212A2"}}, // the Kelvin sign
        {"合同 Contract", "合同 c", {"合同 C"}},
        {"x", "longer than it", {}},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(found(one.text, one.part), one.places) << one.text << " / " << one.part;
        const auto first = firstRangeIgnoringCase(one.text, one.part);
        EXPECT_EQ(first.has_value(), !one.places.empty()) << one.text;
    }
}

TEST(CaseSearch, IsLinearInRepetitiveText) {
    std::string text;
    for (int number = 0; number < 200'000; ++number) text += "äa";
    EXPECT_EQ(rangesIgnoringCase(text, "ÄA").size(), 200'000U);
    EXPECT_TRUE(rangesIgnoringCase(text, "äaäb").empty());
}

} // namespace
} // namespace corvane::text
