// What there is to know of a folder before an archive is begun in it. Everything here may block: background
// work only. No state.
#pragma once

#include <cstdint>
#include <stop_token>
#include <string>
#include <system_error>

namespace corvane {

// More entries of a folder aren't counted.
inline constexpr std::int64_t mostItemsCounted = 10'000;

struct FolderFacts {
    std::int64_t items = 0;  // entries, hidden ones not
    std::string archiveRoot; // the archive that it is or lies in; empty for none
    std::string freeName;    // a name that nothing in it has yet, made of the wanted one
    std::error_code error;   // set where it couldn't be looked into: then nothing of the above is known
};

// Unfinished after a stop.
FolderFacts lookIntoFolder(const std::string& path, const std::string& wantedName,
                           const std::stop_token& stop = {});

} // namespace corvane
