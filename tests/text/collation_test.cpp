#include "text/collation.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace corvane::text {
namespace {

TEST(Collation, OrdersNamesAsAPersonWould) {
    const std::vector<std::string> ordered = {
        "",   "_draft", "1.txt",   "2.txt", "10.txt",     "123456789012345678901", "Ä",      "a9",
        "A9", "a10",    "a10 (2)", "b",     "image2.png", "IMAGE10.png",           "Zürich", "第2章",
    };
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            const int order = naturalCompare(ordered[i], ordered[j]);
            EXPECT_EQ(order < 0, i < j) << ordered[i] << " | " << ordered[j];
            EXPECT_EQ(order > 0, i > j) << ordered[i] << " | " << ordered[j];
        }
    }
    EXPECT_LT(naturalCompare("第2章", "第10章"), 0);
    EXPECT_EQ(naturalCompare("\u00E4", "a\u0308"), 0);
    EXPECT_EQ(naturalCompare("a01", "a1"), 0);
}

TEST(Collation, CompositionMakesEquivalentTextsTheSameBytes) {
    EXPECT_EQ(canonicallyComposed("re\u0301sume\u0301.pdf"), "résumé.pdf");
    EXPECT_EQ(canonicallyComposed("\u1112\u1161\u11AB"), "한");
    EXPECT_EQ(canonicallyComposed("q\u0307\u0323"), canonicallyComposed("q\u0323\u0307"));
    EXPECT_EQ(canonicallyComposed("\uFB01 ①"), "\uFB01 ①");
    EXPECT_EQ(canonicallyComposed("e\u0301\xFF\xE4"), "é\xFF\xE4");
}

} // namespace
} // namespace corvane::text
