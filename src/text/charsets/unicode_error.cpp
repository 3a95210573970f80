#include "text/charsets/unicode_error.h"

#include <fmt/format.h>

namespace corvane::text {

void requireSuccess(UErrorCode status, const char* step) {
    if (U_FAILURE(status)) throw UnicodeError(fmt::format("{}: {}", step, u_errorName(status)));
}

} // namespace corvane::text
