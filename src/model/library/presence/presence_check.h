// The background part of a comparison with live Mail. What was found is kept in its cache; a look without an
// answer changes nothing, there or here.
#pragma once

#include <optional>
#include <string>

#include "model/library/presence/original_presence.h"
#include "model/tasks/task_slot.h"
#include "platform/platform.h"
#include "records/logs/startup_log.h"
#include "records/stores/app_support.h"

namespace corvane {

struct PresenceJob {
    const platform::Platform& platform;
    CorvaneAppSupport support;
    const ArchiveLibraryStartupLog& log;
    std::string mailRootPath;
    SharedPresence known; // of the entries that are asked for
    bool asksMail = false;
};

struct PresenceEnd {
    SharedPresence presence;            // of the same entries, never null
    std::optional<std::string> failure; // why Mail, where it was asked, gave no answer, for the user
};

// First what the cache holds, as a step, where nothing is known yet; then, if wanted, what Mail answers.
PresenceEnd runPresenceJob(const PresenceJob& job, const ReportingTask<SharedPresence>& task);

} // namespace corvane
