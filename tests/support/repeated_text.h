// Texts that are long by repetition.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane::testing {

inline std::string repeated(std::string_view part, std::size_t count) {
    std::string text;
    text.reserve(part.size() * count);
    for (; count > 0; --count) text += part;
    return text;
}

} // namespace corvane::testing
