// Which archived mail stands behind originals that may be deleted: the outcomes of messages, seen from the
// archives' side. Pure functions, linear, any thread.
#pragma once

#include <vector>

#include "listing/availability.h"
#include "records/archived/archive_records.h"
#include "records/mail_message_record.h"

namespace corvane {

// By position in `entries`. An entry is proven when there are messages on this machine that have its base id,
// all of them count as archived and are proven, and its own file isn't known to be gone. `available` is of
// these messages.
std::vector<bool> provenEntries(const std::vector<ArchivedEntry>& entries, const MessageList& messages,
                                const AvailabilityResult& available);

// By position in `entries`, of those that are proven: whether the deletion of an original frees room that no
// entry before has counted. The same bytes in a second archive free nothing more, and no more entries count
// than Mail holds copies.
std::vector<bool> freeingEntries(const std::vector<ArchivedEntry>& entries, const std::vector<bool>& proven,
                                 const MessageList& messages, const AvailabilityResult& available);

} // namespace corvane
