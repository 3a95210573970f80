// Names of files that a person takes out of an archive, to whatever disk and system. Text only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace corvane::archive {

// A name that every system takes as one component of a path: safeFileName(), with an underscore where the
// name belongs to a device or a setting of Windows, and at most maximumNameBytes long, with the extension
// that it had.
std::string portableFileName(std::string_view name);

// Hands out each name once in a folder, as a disk without case compares them. One thread.
class UniqueNames {
  public:
    // A portable name, or it with "-2", "-3"... before its extension. Asked again for the same name, it goes
    // on to the next number.
    std::string next(std::string_view folder, const std::string& portableName);

  private:
    std::unordered_map<std::string, std::int64_t> lastNumbers_; // by folder and folded name
};

} // namespace corvane::archive
