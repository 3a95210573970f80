// What is known of the file of an archived mail.
#pragma once

#include "cli/session.h"
#include "records/archived/archive_records.h"

namespace corvane::cli {

struct MailFileState {
    bool isGone = false;      // the place answered, and neither the file nor a placeholder is there
    bool isAvailable = false; // on this machine
};

// Looks at the place. One that doesn't answer tells nothing: both are false.
MailFileState fileStateOf(Session& session, const ArchivedEntry& entry);

} // namespace corvane::cli
