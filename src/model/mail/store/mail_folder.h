// Which folders hold a store of Mail. Blocks; any thread.
#pragma once

#include <string>

namespace corvane {

// Whether the folder is one like "Library/Mail": some version of a store lies in it.
bool holdsMailStore(const std::string& folder);

// Name of the version folder of that store which Mail uses, such as "V10"; empty where none is there.
std::string mailVersionIn(const std::string& folder);

} // namespace corvane
