// What has to be written so that an archive holds every copy of a message, when it may hold some already.
// Pure.
#pragma once

#include <cstddef>
#include <vector>

#include "archive/destination/archived_file.h"
#include "archive/message_extraction.h"
#include "records/archived/archive_records.h"
#include "records/archived/file_readings.h"

namespace corvane::archive {

// A record of the message, and what is at its place.
struct KnownMail {
    const ArchivedEmailRecord* record = nullptr;
    ArchivedFile file;
    // False where its place can't be written to.
    bool isRestorable = true;
};

// The file is the one that was recorded: it has the record's hash, or, where the record has none, its size.
bool isIntact(const KnownMail& known);

// A file that is gone or altered, and the copy that has its bytes.
struct Restoration {
    std::size_t known = 0;
    std::size_t copy = 0;
};

// `readings` are those of the copies, at the same positions.
std::vector<Restoration> restorationsFor(const std::vector<KnownMail>& known,
                                         const std::vector<MessageBytes>& copies,
                                         const std::vector<CopyReading>& readings);

// Positions of the groups of which no copy lies in an intact file. A body that is known under another header
// is not enough: other recipients make another mail.
std::vector<std::size_t> groupsWithoutFile(const std::vector<BodyGroup>& groups,
                                           const std::vector<KnownMail>& known,
                                           const std::vector<CopyReading>& readings);

} // namespace corvane::archive
