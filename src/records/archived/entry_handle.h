// The handle by which people call an archived mail: the first digits of SHA-256 over its entry id. Pure
// functions, any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

// Digits of the handle that documents for other programs have.
inline constexpr std::size_t fullHandleDigits = 16;
inline constexpr std::size_t shortestHandleDigits = 6;

// All digits of an entry's handle as one number.
std::uint64_t handleValue(std::string_view entryID);

// The first `count` digits, in lower case.
std::string handleDigits(std::uint64_t value, std::size_t count);

// Digits that two handles begin with alike.
std::size_t commonHandleDigits(std::uint64_t a, std::uint64_t b);

struct HandleRange {
    std::uint64_t first = 0;
    std::uint64_t last = 0; // of those that fit
};

// The handles that begin with these digits, of either case; absent for a text that is too short, too long or
// no such digits.
std::optional<HandleRange> handlesBeginningWith(std::string_view digits);

} // namespace corvane
