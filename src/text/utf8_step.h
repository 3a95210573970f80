// Steps through UTF-8 text, by ICU's macros.
#pragma once

#include <cstddef>
#include <string_view>

#include <unicode/utf8.h>

namespace corvane::text {

// The scalar at `position`, which moves behind it; negative for an ill-formed sequence.
inline UChar32 nextScalar(std::string_view text, std::size_t& position) noexcept {
    UChar32 scalar = 0;
    // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): inside of the macro
    U8_NEXT(text.data(), position, text.size(), scalar);
    return scalar;
}

} // namespace corvane::text
