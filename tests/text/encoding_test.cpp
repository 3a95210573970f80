#include "text/charsets/encoding.h"

#include <limits>
#include <random>
#include <utility>

#include <gtest/gtest.h>

namespace corvane::text {
namespace {

TEST(Encoding, PercentDecodingIsAllOrNothing) {
    const std::pair<std::string_view, std::string> cases[] = {
        {"", ""},         {"INBOX%2FSub+x", "INBOX/Sub+x"}, {"%E6%96%87.pdf", "文.pdf"}, {"%e6%96%87", "文"},
        {"文%20", "文 "},
    };
    for (const auto& [text, decoded] : cases) EXPECT_EQ(percentDecoded(text), decoded) << text;
    for (const char* refused : {"100%", "%2", "%2G", "%+1", "%%41", "%E6%96", "a\xFF"})
        EXPECT_EQ(percentDecoded(refused), std::nullopt) << refused;
    EXPECT_EQ(percentDecoded("%00"), std::string(1, '\0'));
}

TEST(Encoding, PathEncodingComesBack) {
    EXPECT_EQ(percentEncodedPath("/Users/我 a;b?c#d%[e].emlx"),
              "/Users/%E6%88%91%20a%3Bb%3Fc%23d%25%5Be%5D.emlx");
    EXPECT_EQ(percentEncodedPath("/-._~!$&'()*+,=:@Az09"), "/-._~!$&'()*+,=:@Az09");
    for (int byte = 1; byte < 0x80; ++byte) {
        const std::string path = "/文" + std::string(1, static_cast<char>(byte));
        EXPECT_EQ(percentDecoded(percentEncodedPath(path)), path);
    }
}

TEST(Encoding, Base64RefusesEveryDeviation) {
    const std::pair<std::string_view, std::string> cases[] = {
        {"", ""},        {"Zg==", "f"},        {"Zm8=", "fo"},
        {"Zm9v", "foo"}, {"Zm9vYg==", "foob"}, {"+/+/", "\xFB\xFF\xBF"},
        {"Zh==", "f"},
    };
    for (const auto& [text, bytes] : cases) EXPECT_EQ(base64Decoded(text), bytes) << text;
    for (const char* refused :
         {"Zg", "Zg=", "Z===", "====", "=", "Zg==Zg==", "Z=g=", "Zm9v ", "Zm9\n", "-_-_", "Zm9\xE9"})
        EXPECT_EQ(base64Decoded(refused), std::nullopt) << refused;
}

TEST(Encoding, Base64RoundTripsBytesOfEveryLength) {
    std::mt19937 random(1);
    std::string bytes;
    for (int length = 0; length < 300; ++length) {
        ASSERT_EQ(base64Decoded(base64Encoded(bytes)), bytes) << length;
        bytes.push_back(static_cast<char>(random()));
    }
}

TEST(Encoding, NumbersTakeTheWholeText) {
    using Limits = std::numeric_limits<std::int64_t>;
    const std::pair<std::string_view, std::int64_t> cases[] = {
        {"0", 0},
        {"+7", 7},
        {"-12", -12},
        {"007", 7},
        {"9223372036854775807", Limits::max()},
        {"-9223372036854775808", Limits::min()},
    };
    for (const auto& [text, number] : cases) EXPECT_EQ(parseInteger(text), number) << text;
    for (const char* refused : {"9223372036854775808", "-9223372036854775809", "", "+", "-", "+-1", "++1",
                                " 1", "1 ", "1.0", "0x1", "１"})
        EXPECT_EQ(parseInteger(refused), std::nullopt) << refused;
    EXPECT_EQ(hexadecimalByte("00"), 0);
    EXPECT_EQ(hexadecimalByte("fF"), 0xFF);
    for (const char* refused : {"4", "+4", "-1", "0g", "041", " 4"})
        EXPECT_EQ(hexadecimalByte(refused), std::nullopt) << refused;
}

} // namespace
} // namespace corvane::text
