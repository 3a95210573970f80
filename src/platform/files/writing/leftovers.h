// Removal of what killed processes of this program left behind. Only what bears one of our names, belongs to
// this user, is no link, and is in nobody's use goes; where the file system can't tell the last, what hasn't
// changed for a day. Blocks, linear in the entries of the folder; any thread. Failures are ignored: the next
// start tries again.
#pragma once

#include <string>
#include <string_view>

namespace corvane::platform {

// ".corvane-UUID.tmp", which writeFileAtomically() makes. Returns how many went.
int removeUnfinishedFiles(const std::string& folder);

// What TemporaryFile and TemporaryFolder make: "corvane-rows-UUID.json". Returns how many went.
int removeTemporaryFiles(const std::string& folder);

// Text only.
bool isNameOfUnfinishedFile(std::string_view name) noexcept;
bool isNameOfTemporaryFile(std::string_view name) noexcept;

} // namespace corvane::platform
