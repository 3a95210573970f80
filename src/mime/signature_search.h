// Where the closing formula, the signature or the disclaimer of a mail begins. Pure, linear, any thread.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvane::mime {

// The start of the first of them that has at least twelve characters of text before it, together with the
// empty lines above it; npos without one. Only the first place of each kind is looked at.
std::size_t signatureStart(std::string_view text);

} // namespace corvane::mime
