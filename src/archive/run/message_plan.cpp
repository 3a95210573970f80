#include "archive/run/message_plan.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "platform/files/sha256.h"
#include "records/archived/content_hash.h"

namespace corvane::archive {

namespace {

std::optional<platform::Sha256Digest> hashOf(const ArchivedEmailRecord& record) {
    return record.contentHash ? parseContentHash(*record.contentHash) : std::nullopt;
}

bool hasBytesOf(const ArchivedEmailRecord& record, const MessageBytes& copy, const CopyReading& reading) {
    if (const auto hash = hashOf(record)) return *hash == reading.reading.hash;
    return record.sizeBytes == static_cast<std::int64_t>(copy.bytes.size());
}

} // namespace

bool isIntact(const KnownMail& known) {
    if (known.file.state != ArchivedFile::State::read) return false;
    const auto hash = hashOf(*known.record);
    return !hash || *hash == known.file.hash;
}

std::vector<Restoration> restorationsFor(const std::vector<KnownMail>& known,
                                         const std::vector<MessageBytes>& copies,
                                         const std::vector<CopyReading>& readings) {
    std::vector<Restoration> restorations;
    for (std::size_t position = 0; position < known.size(); ++position) {
        if (isIntact(known[position]) || !known[position].isRestorable) continue;
        for (std::size_t copy = 0; copy < copies.size(); ++copy) {
            if (!hasBytesOf(*known[position].record, copies[copy], readings[copy])) continue;
            restorations.push_back({.known = position, .copy = copy});
            break;
        }
    }
    return restorations;
}

std::vector<std::size_t> groupsWithoutFile(const std::vector<BodyGroup>& groups,
                                           const std::vector<KnownMail>& known,
                                           const std::vector<CopyReading>& readings) {
    const auto isHeld = [&](const BodyGroup& group) {
        return std::ranges::any_of(group.copies, [&](std::size_t copy) {
            return std::ranges::any_of(known, [&](const KnownMail& mail) {
                return isIntact(mail) && mail.file.hash == readings[copy].reading.hash;
            });
        });
    };
    std::vector<std::size_t> without;
    for (std::size_t position = 0; position < groups.size(); ++position) {
        if (!isHeld(groups[position])) without.push_back(position);
    }
    return without;
}

} // namespace corvane::archive
