// The form of a subject by which mail of one conversation is known: without the prefixes of answers and
// forwards, in lower case, with short numbers made alike. Pure functions, linear, any thread.
#pragma once

#include <string>
#include <string_view>

namespace corvane {

// Begins the key of mail that has no subject, which joins nothing.
inline constexpr std::string_view noSubjectPrefix = "∅";

// `fallbackID` makes the key of a subject of which nothing is left.
std::string normalizedSubjectKey(std::string_view subject, std::string_view fallbackID);

// The same, but empty for a subject of which nothing is left.
std::string subjectKeyOrEmpty(std::string_view subject);

// Each run of up to eight ASCII digits as one "#".
std::string fuzzeSubjectNumbers(std::string_view text);

} // namespace corvane
