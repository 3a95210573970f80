#include "archive/destination/index_records.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "records/archived/stable_id.h"

namespace corvane::archive {

namespace {

bool holdSameMail(const ArchivedEmailRecord& ours, const ArchivedEmailRecord& theirs) {
    if (ours.contentHash && theirs.contentHash) return ours.contentHash == theirs.contentHash;
    return ours.emlRelativePath == theirs.emlRelativePath && ours.sizeBytes == theirs.sizeBytes;
}

} // namespace

IndexRecords::IndexRecords(std::vector<ArchivedEmailRecord> records)
  : records_(std::move(records)) {
    byBaseID_.reserve(records_.size());
    for (std::size_t position = 0; position < records_.size(); ++position) know(position);
}

void IndexRecords::know(std::size_t position) {
    ids_.insert(records_[position].id);
    byBaseID_.emplace(baseID(records_[position]), position);
}

std::vector<std::size_t> IndexRecords::ofMessage(std::string_view baseID) const {
    std::vector<std::size_t> positions;
    const auto [first, last] = byBaseID_.equal_range(baseID);
    for (auto found = first; found != last; ++found) positions.push_back(found->second);
    std::ranges::sort(positions);
    return positions;
}

std::size_t IndexRecords::freeVariant(std::string_view baseID, std::size_t number) const {
    while (hasID(variantID(baseID, number))) ++number;
    return number;
}

void IndexRecords::add(ArchivedEmailRecord record) {
    records_.push_back(std::move(record));
    know(records_.size() - 1);
}

void IndexRecords::remove(const std::vector<std::size_t>& positions) {
    if (positions.empty()) return;
    std::vector<ArchivedEmailRecord> kept;
    auto next = positions.begin();
    for (std::size_t position = 0; position < records_.size(); ++position) {
        if (next != positions.end() && *next == position) {
            ++next;
        } else {
            kept.push_back(std::move(records_[position]));
        }
    }
    *this = IndexRecords(std::move(kept));
}

std::vector<ArchivedEmailRecord> IndexRecords::release() && {
    byBaseID_.clear();
    ids_.clear();
    return std::move(records_);
}

void setMessageFields(ArchivedEmailRecord& record, const MailMessageRecord& message) {
    record.messageIdentifier = message.messageIdentifier;
    record.referencedMessageIdentifiers = message.referencedMessageIdentifiers;
    record.subject = message.subject;
    record.sender = message.sender;
    record.recipients = message.recipients;
    record.date = message.date;
    record.mailbox = message.mailbox;
    record.accountIdentifier = message.accountIdentifier;
    record.accountName = message.accountName;
    record.attachmentNames.clear();
    for (const MailAttachmentRecord& attachment : message.attachments)
        record.attachmentNames.push_back(attachment.fileName);
}

SharedText variantID(std::string_view baseID, std::size_t number) {
    return fmt::format("{}#v{}", baseID, number);
}

EmailArchiveIndex mergedIndexes(const EmailArchiveIndex& ours, EmailArchiveIndex theirs) {
    theirs.createdAt = std::min(ours.createdAt, theirs.createdAt);
    theirs.updatedAt = std::max(ours.updatedAt, theirs.updatedAt);
    // Fewer than the records where a foreign index repeats an id; the first one of them counts.
    std::unordered_map<std::string_view, std::size_t> positions;
    for (std::size_t position = 0; position < theirs.records.size(); ++position) {
        positions.emplace(theirs.records[position].id, position);
    }
    std::vector<ArchivedEmailRecord> missing;
    std::vector<ArchivedEmailRecord> conflicting;
    for (const ArchivedEmailRecord& record : ours.records) {
        const auto same = positions.find(record.id.view());
        if (same == positions.end()) {
            missing.push_back(record);
        } else if (!holdSameMail(record, theirs.records[same->second])) {
            conflicting.push_back(record);
        } else if (auto& hash = theirs.records[same->second].contentHash; !hash) {
            hash = record.contentHash;
        }
    }
    IndexRecords merged(std::move(theirs.records));
    for (ArchivedEmailRecord& record : missing) merged.add(std::move(record));
    for (ArchivedEmailRecord& record : conflicting) {
        const std::string_view base = baseID(record);
        record.id = variantID(base, merged.freeVariant(base, 1));
        merged.add(std::move(record));
    }
    theirs.records = std::move(merged).release();
    return theirs;
}

} // namespace corvane::archive
