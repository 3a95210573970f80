// The "cc" line of an archived mail out of its file, for records that don't have it. Any thread; touches the
// disk.
#pragma once

#include <optional>
#include <string>

#include "platform/platform.h"
#include "records/archived/archive_records.h"

namespace corvane {

// Empty without one; absent where the file couldn't be read, or isn't on this machine: it is never downloaded
// for that.
std::optional<std::string> ccLineOfFile(const platform::Platform& platform, const ArchivedEntry& entry);

} // namespace corvane
