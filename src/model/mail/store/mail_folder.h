// Which folders hold a store of Mail. Blocks; any thread.
#pragma once

#include <string>

namespace corvane {

// Whether the folder is one like "Library/Mail": some version of a store lies in it.
bool holdsMailStore(const std::string& folder);

} // namespace corvane
