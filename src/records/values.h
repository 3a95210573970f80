// Values that every record is made of. Thread-safe.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

// A point in time with the precision that every file of the program has.
using Date = std::chrono::sys_seconds;

// 128 bits, upper-case hyphenated text when written.
struct Uuid {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    // Version 4, RFC 9562.
    static Uuid random();

    // Digits of either case; absent for any other form.
    static std::optional<Uuid> parse(std::string_view text);

    [[nodiscard]] std::string text() const;

    friend bool operator==(const Uuid&, const Uuid&) = default;
};

} // namespace corvane
