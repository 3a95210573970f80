// What a command has read of an archive's files, kept for the proofs.
#pragma once

#include <string>
#include <vector>

#include "platform/platform.h"
#include "records/archived/file_readings.h"

namespace corvane::cli {

// Adds the readings to those of the home that `system` stands for, in the place of earlier ones of the same
// files, under every name of the archive (underEveryName). Readings that can't be kept are told, and made
// again by the next proof.
void keepReadings(const platform::Platform& system, const std::string& root,
                  std::vector<ArchivedFileReading> readings);

} // namespace corvane::cli
