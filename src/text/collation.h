// The human-friendly order of names: by the Unicode collation algorithm (root), with numbers compared by
// value, so that "a10" follows "a9". Thread-safe.
#pragma once

#include <string>
#include <string_view>

namespace corvane::text {

// Negative, zero or positive. Zero also for texts that differ only in what collation ignores: canonically
// equivalent forms, control characters, leading zeros of a number. A total order needs the bytes as a
// tie-break.
int naturalCompare(std::string_view a, std::string_view b);

// Canonical composition (NFC), the form in which canonically equivalent texts are the same bytes.
// Ill-formed bytes stay.
std::string canonicallyComposed(std::string_view text);

} // namespace corvane::text
