#include "text/case.h"

#include <utility>

#include <gtest/gtest.h>
#include <unicode/uloc.h>

namespace corvane::text {
namespace {

TEST(Case, LowersByTheRootLocaleWhateverTheProcessSpeaks) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", ""},
        {"Message-ID@HOST", "message-id@host"},
        {"ÄÖÜ ẞ Straße", "äöü ß straße"},
        {"ISTANBUL I", "istanbul i"},
        {"İ", "i\u0307"},
        {"ΟΔΟΣ", "οδος"},
        {"ＡＢＣ　中文", "ａｂｃ　中文"},
        {"A\xFFÄ\xE4\xB8", "a\uFFFDä\uFFFD"},
    };
    const std::string earlier = uloc_getDefault();
    UErrorCode status = U_ZERO_ERROR;
    uloc_setDefault("tr", &status);
    for (const auto& [text, lower] : cases) EXPECT_EQ(lowercased(text), lower);
    uloc_setDefault(earlier.c_str(), &status);
    EXPECT_EQ(asciiLowercased("[ÄZ@`{"), "[Äz@`{");
    EXPECT_EQ(asciiUppercased("[äz@`{"), "[äZ@`{");
    EXPECT_EQ(uppercased("é-ß1"), "É-SS1");
}

TEST(Case, ComparesWithFullFolding) {
    struct Case {
        std::string_view text;
        std::string_view part;
        bool equal;
        bool contains;
    };

    const Case cases[] = {
        {"", "", true, true},
        {"abc", "", false, true},
        {"", "a", false, false},
        {"UTF-8", "utf-8", true, true},
        {"utf-8x", "UTF-8", false, true},
        {"@[`{", "`{@[", false, false},
        {"STRASSE", "straße", true, true},
        {"Straße 5", "SS", false, true},
        {"Σίσυφος", "ΣΊΣΥΦΟΣ", true, true},
        {"\u212A", "k", true, true},
        {"季度报告Q3", "报告q3", false, true},
        {"季度报告", "报吿", false, false},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(equalsIgnoringCase(each.text, each.part), each.equal) << each.text << '|' << each.part;
        EXPECT_EQ(containsIgnoringCase(each.text, each.part), each.contains) << each.text << '|' << each.part;
    }
}

TEST(Case, SearchesRepetitiveTextInLinearTime) {
    const std::string text(8'000'000, 'a');
    std::string part(4'000'000, 'A');
    part.push_back('b');
    EXPECT_FALSE(containsIgnoringCase(text, part));
}

} // namespace
} // namespace corvane::text
