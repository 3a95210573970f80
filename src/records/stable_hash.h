// The hash behind file names that must stay the same across runs and versions.
#pragma once

#include <string>
#include <string_view>

namespace corvane {

// 64-bit FNV-1a over the UTF-8 bytes, in lower-case hexadecimal without leading zeros. The start value isn't
// the published one, and must stay: existing file names depend on it.
std::string stableHash(std::string_view text);

} // namespace corvane
