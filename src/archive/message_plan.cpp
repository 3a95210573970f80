#include "archive/message_plan.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/files/sha256.h"
#include "records/content_hash.h"

namespace corvane::archive {

namespace {

std::optional<platform::Sha256Digest> hashOf(const ArchivedEmailRecord& record) {
    return record.contentHash ? parseContentHash(*record.contentHash) : std::nullopt;
}

bool hasBytesOf(const ArchivedEmailRecord& record, const MessageBytes& copy, const CopyReading& reading) {
    if (const auto hash = hashOf(record)) return *hash == reading.reading.hash;
    return record.sizeBytes == static_cast<std::int64_t>(copy.bytes.size());
}

std::string_view bodyOf(std::string_view mail) {
    return mail.substr(bodyStartIndex(mail));
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
                                           const std::vector<MessageBytes>& copies,
                                           const std::vector<CopyReading>& readings) {
    const auto isHeld = [&](const BodyGroup& group, const KnownMail& mail) {
        if (!isIntact(mail)) return false;
        return std::ranges::any_of(
                   group.copies,
                   [&](std::size_t copy) { return readings[copy].reading.hash == mail.file.hash; }) ||
               copies[group.largest].body() == bodyOf(*mail.file.bytes);
    };
    std::vector<std::size_t> without;
    for (std::size_t position = 0; position < groups.size(); ++position) {
        const auto holds = [&](const KnownMail& mail) { return isHeld(groups[position], mail); };
        if (std::ranges::none_of(known, holds)) without.push_back(position);
    }
    return without;
}

} // namespace corvane::archive
