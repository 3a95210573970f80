#include "listing/scan_deduplication.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>

#include <fmt/format.h>

#include "text/case.h"
#include "text/collation.h"
#include "text/trim.h"

namespace corvane {

namespace {

std::string normalized(std::string_view text) {
    return text::lowercased(text::trimWhitespaceAndNewlines(text));
}

std::int64_t knownSizes(const MailMessageRecord& record) {
    std::int64_t sum = 0;
    for (const MailAttachmentRecord& attachment : record.attachments)
        sum += attachment.estimatedSize.value_or(0);
    return sum;
}

} // namespace

std::string duplicateKey(const MailMessageRecord& record) {
    if (record.messageIdentifier && !record.messageIdentifier->empty()) {
        return fmt::format("message-id|{}", record.messageIdentifier->view());
    }
    const std::int64_t seconds = record.date ? record.date->time_since_epoch().count() : 0;
    return fmt::format("{}|{}|{}|{}", normalized(record.subject), normalized(record.sender),
                       normalized(record.recipients), seconds);
}

bool isBetterDuplicate(const MailMessageRecord& candidate, const MailMessageRecord& existing) {
    if (candidate.attachments.size() != existing.attachments.size()) {
        return candidate.attachments.size() > existing.attachments.size();
    }
    return knownSizes(candidate) > knownSizes(existing);
}

std::vector<FileURL> mergedMessageFileURLs(std::vector<FileURL> a, const std::vector<FileURL>& b) {
    a.insert(a.end(), b.begin(), b.end());
    std::stable_sort(a.begin(), a.end(), [](const FileURL& x, const FileURL& y) {
        return text::naturalCompare(x.path(), y.path()) < 0;
    });
    std::unordered_set<std::string_view> seen;
    std::vector<FileURL> merged;
    for (FileURL& url : a) {
        if (seen.insert(url.path().view()).second) merged.push_back(std::move(url));
    }
    return merged;
}

std::pair<std::size_t, bool> DeduplicatedRecords::positionOf(const MailMessageRecord& record) {
    if (record.messageIdentifier && !record.messageIdentifier->empty()) {
        return positionByIdentifier_.insert(
            *record.messageIdentifier, static_cast<PositionTable::Position>(records_.size()),
            [&](PositionTable::Position known) { return records_[known].messageIdentifier->view(); });
    }
    const auto [entry, isNew] = positionByFallbackKey_.try_emplace(duplicateKey(record), records_.size());
    return {entry->second, isNew};
}

void DeduplicatedRecords::reserve(std::size_t count) {
    records_.reserve(count);
    positionByIdentifier_.reserve(count);
}

void DeduplicatedRecords::merge(std::vector<MailMessageRecord> records) {
    for (MailMessageRecord& record : records) {
        const auto [position, isNew] = positionOf(record);
        if (isNew) {
            records_.push_back(std::move(record));
            continue;
        }
        MailMessageRecord& existing = records_[position];
        auto urls = mergedMessageFileURLs(existing.allMessageFileURLs(), record.allMessageFileURLs());
        if (isBetterDuplicate(record, existing)) existing = std::move(record);
        existing.relatedMessageFileURLs = std::move(urls);
    }
}

MessageList deduplicatedRecords(MessageList records) {
    DeduplicatedRecords merged;
    merged.merge(std::move(records));
    return std::move(merged).take();
}

} // namespace corvane
