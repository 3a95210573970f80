// Taking texts apart at fixed characters, and replacing fixed parts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane::text {

// Every part, empty ones too; views into the argument. The empty text has one empty part.
std::vector<std::string_view> splitText(std::string_view text, char separator);

// Every part that isn't empty.
std::vector<std::string_view> splitNonEmpty(std::string_view text, char separator);

// Every occurrence of `part`, from the left; an empty part occurs nowhere.
std::string replacingAll(std::string_view text, std::string_view part, std::string_view replacement);

} // namespace corvane::text
