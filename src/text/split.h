// Cutting texts at a character.
#pragma once

#include <string_view>
#include <vector>

namespace corvane::text {

// Every part, empty ones too; views into the argument. The empty text has one empty part.
std::vector<std::string_view> splitText(std::string_view text, char separator);

} // namespace corvane::text
