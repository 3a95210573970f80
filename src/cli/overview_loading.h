// The overview of archived mail for commands: the last scan, the archives and what is known of the originals,
// joined as the window joins them.
#pragma once

#include <string_view>

#include "cli/session.h"
#include "model/library/overview/overview_state.h"

namespace corvane::cli {

enum class OriginalsCheck {
    known,  // what earlier looks have shown
    compare // compares with Mail, and proves what isn't proven yet, with the progress on standard error
};

// Never null. A comparison that was interrupted leaves what it has found.
SharedOverview loadOverview(Session& session, OriginalsCheck check);

// The group of an account key, as its place; throws CommandFailure where there is none.
std::size_t overviewGroup(const ArchivedOverview& overview, std::string_view key);

} // namespace corvane::cli
