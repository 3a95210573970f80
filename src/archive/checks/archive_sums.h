// The hashes of an archive in the form in which other programs check them: sha256sum -c and shasum -c, run in
// the archive's root.
#pragma once

#include <cstdint>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "records/archived/archive_records.h"

namespace corvane {

struct ArchiveSums {
    struct Sum {
        std::string path; // relative to the root
        std::string sha256;
    };

    std::vector<Sum> sums;        // in the order of the index; a path that leaves the root is left out
    std::int64_t withoutHash = 0; // records
};

ArchiveSums sumsOf(const EmailArchiveIndex& index);

// "<hash>  <path>". A path with a backslash or a line feed is written with escapes, and the line then begins
// with a backslash, as these programs write and read it.
std::string sumLine(const ArchiveSums::Sum& sum);

// The sums of the archive at this root. Blocks; throws ArchiveAccessError when there is no index, it can't be
// used or the place doesn't answer, archive::ReadingStopped after a stop.
ArchiveSums sumsOfArchive(const std::string& root, const std::stop_token& stop = {});

} // namespace corvane
