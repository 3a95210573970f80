// Where a text stands in another without regard to case, in the bytes of the text as it is written. By full
// Unicode case folding on both sides; a match never begins or ends within a character. Thread-safe, linear in
// the text.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace corvane::text {

struct ByteRange {
    std::size_t start = 0;
    std::size_t length = 0;

    [[nodiscard]] std::size_t end() const { return start + length; }

    friend bool operator==(const ByteRange&, const ByteRange&) = default;
};

// The first place; nullopt when the text doesn't hold the part. An empty part stands nowhere.
std::optional<ByteRange> firstRangeIgnoringCase(std::string_view text, std::string_view part);

// All places from the left that don't overlap.
std::vector<ByteRange> rangesIgnoringCase(std::string_view text, std::string_view part);

} // namespace corvane::text
