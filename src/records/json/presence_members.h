// The members of the presence cache's object of statuses. There are as many as archived mails, so they are
// written and read in the order of the entries, and nothing is kept by key. Any thread.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/files/writing/durable_file.h"
#include "records/archived/archive_records.h"

namespace corvane {

using PresenceStatuses = std::vector<ArchivedOriginalPresenceStatus>;

// Hands over the text between the braces. `statuses` has one for each entry.
void writePresenceMembers(const std::vector<ArchivedEntry>& entries, const PresenceStatuses& statuses,
                          const platform::ByteSink& sink);

// The statuses of members that were written of these very entries in their order; absent for any other text.
std::optional<PresenceStatuses> readPresenceMembers(std::string_view members,
                                                    const std::vector<ArchivedEntry>& entries);

} // namespace corvane
