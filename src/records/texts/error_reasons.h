// What the errors of the system mean to a user. Thread-safe.
#pragma once

#include <string>

namespace corvane {

// The reason for an errno of a file operation, as a part of a sentence without a full stop; one that users
// don't meet is told by its number.
std::string systemErrorReason(int errorNumber);

} // namespace corvane
