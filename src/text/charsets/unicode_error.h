// The one seam where ICU's status codes become exceptions.
#pragma once

#include <stdexcept>

#include <unicode/utypes.h>

namespace corvane::text {

class UnicodeError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Throws UnicodeError with the name of the failed step when the status is an error.
void requireSuccess(UErrorCode status, const char* step);

} // namespace corvane::text
