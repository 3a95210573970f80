// Where nothing of ours may be written, whoever asks for it. Blocks: background work only. No state.
#pragma once

#include <optional>
#include <string>

#include "locations/places/place_looks.h"

namespace corvane {

// Why nothing may be written at the path, for the user: it lies in Mail's folder, links resolved. Absent
// where it doesn't. A path that isn't there yet is judged by the nearest folder above it that is.
std::optional<std::string> refusalInMail(const std::string& path, const std::string& mailRoot);

// Why no archive may be begun or continued at the path, for the user: as above, inside of another archive,
// and in `ownFolder`, which is the program's.
std::optional<std::string> refusalOfArchive(const std::string& path, const std::string& mailRoot,
                                            const std::string& ownFolder);

// The same within the limits of a look. Absent also for a place that doesn't answer, which whoever writes
// there meets himself.
std::optional<std::string> refusalOfArchive(PlaceLooks& looks, const std::string& path,
                                            const std::string& mailRoot, const std::string& ownFolder);

} // namespace corvane
