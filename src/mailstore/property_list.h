// The texts and truth values at the top of a property list's dictionary (Apple's XML form and "bplist00"),
// which is all that the store's Info.plist files are read for. Tolerant, linear and without recursion:
// whatever isn't understood is left out. libplist isn't used for it: it copies each object for every
// reference to it, so that a list of 600 bytes, arrays that name the next one twice, takes all memory.
//
// Thread-safe.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <variant>

namespace corvane::mailstore {

using PropertyList = std::map<std::string, std::variant<bool, std::string>, std::less<>>;

// Empty when the bytes hold no dictionary.
PropertyList parsePropertyList(std::string_view bytes);

// The same for a file; empty when it can't be read or is larger than any real one.
PropertyList readPropertyList(const std::string& path);

} // namespace corvane::mailstore
