// Taking texts apart at fixed characters and replacing fixed parts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "text/split.h"

namespace corvane::mailstore {

using text::splitText;

std::vector<std::string_view> splitNonEmpty(std::string_view text, char separator);

// Every occurrence of `part`, from the left; an empty part occurs nowhere.
std::string replacingAll(std::string_view text, std::string_view part, std::string_view replacement);

} // namespace corvane::mailstore
