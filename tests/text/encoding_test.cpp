#include "text/charsets/encoding.h"

#include <limits>
#include <random>
#include <utility>

#include <gtest/gtest.h>

namespace corvane::text {
namespace {

TEST(Encoding, PercentDecodingIsAllOrNothing) {
    const std::pair<std::string_view, std::optional<std::string>> cases[] = {
        {"", ""},
        {"INBOX%2FSub+x", "INBOX/Sub+x"},
        {"%E6%96%87.pdf", "文.pdf"},
        {"%e6%96%87", "文"},
        {"100%", std::nullopt},
        {"%2", std::nullopt},
        {"%2G", std::nullopt},
        {"%+1", std::nullopt},
        {"%%41", std::nullopt},
        {"%E6%96", std::nullopt},
        {"a\xFF", std::nullopt},
        {"文%20", "文 "},
    };
    for (const auto& [text, decoded] : cases) EXPECT_EQ(percentDecoded(text), decoded) << text;
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
    const std::pair<std::string_view, std::optional<std::string>> cases[] = {
        {"", ""},
        {"Zg==", "f"},
        {"Zm8=", "fo"},
        {"Zm9v", "foo"},
        {"Zm9vYg==", "foob"},
        {"+/+/", "\xFB\xFF\xBF"},
        {"Zh==", "f"},
        {"Zg", std::nullopt},
        {"Zg=", std::nullopt},
        {"Z===", std::nullopt},
        {"====", std::nullopt},
        {"=", std::nullopt},
        {"Zg==Zg==", std::nullopt},
        {"Z=g=", std::nullopt},
        {"Zm9v ", std::nullopt},
        {"Zm9\n", std::nullopt},
        {"-_-_", std::nullopt},
        {"Zm9\xE9", std::nullopt},
    };
    for (const auto& [text, bytes] : cases) EXPECT_EQ(base64Decoded(text), bytes) << text;
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
    const std::pair<std::string_view, std::optional<std::int64_t>> cases[] = {
        {"0", 0},
        {"+7", 7},
        {"-12", -12},
        {"007", 7},
        {"9223372036854775807", Limits::max()},
        {"-9223372036854775808", Limits::min()},
        {"9223372036854775808", std::nullopt},
        {"-9223372036854775809", std::nullopt},
        {"", std::nullopt},
        {"+", std::nullopt},
        {"-", std::nullopt},
        {"+-1", std::nullopt},
        {"++1", std::nullopt},
        {" 1", std::nullopt},
        {"1 ", std::nullopt},
        {"1.0", std::nullopt},
        {"0x1", std::nullopt},
        {"１", std::nullopt},
    };
    for (const auto& [text, number] : cases) EXPECT_EQ(parseInteger(text), number) << text;

    const std::pair<std::string_view, std::optional<unsigned char>> bytes[] = {
        {"00", 0},
        {"fF", 0xFF},
        {"4", std::nullopt},
        {"+4", std::nullopt},
        {"-1", std::nullopt},
        {"0g", std::nullopt},
        {"041", std::nullopt},
        {" 4", std::nullopt},
    };
    for (const auto& [text, byte] : bytes) EXPECT_EQ(hexadecimalByte(text), byte) << text;
}

} // namespace
} // namespace corvane::text
