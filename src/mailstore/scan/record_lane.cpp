#include "mailstore/scan/record_lane.h"

#include <exception>
#include <utility>

#include "mailstore/scan/parse_indexed_message.h"

namespace corvane::mailstore {

RecordLane::RecordLane(std::shared_ptr<StoreListing> listing, ScanTimingMetrics& timing)
  : files_(std::move(listing))
  , timing_(timing) {}

std::optional<MadeRecords> RecordLane::make(const std::string& rowsPath) {
    MadeRecords made;
    JsonRowFile file(rowsPath);
    while (const auto piece = file.next()) {
        const bool isWhole = parser_.parse(*piece, [&](JsonRow& row) {
            if (const auto candidate = candidateOf(row)) addRecord(*candidate, made);
        });
        if (!isWhole) return std::nullopt;
    }
    if (file.hasFailed()) return std::nullopt;
    return made;
}

std::uint32_t RecordLane::mailboxNumber(std::string_view url) {
    if (const auto known = numbersByURL_.find(url); known != numbersByURL_.end()) return known->second;
    const auto number = static_cast<std::uint32_t>(mailboxes_.size());
    mailboxes_.push_back({.url = std::string(url), .files = &files_.mailbox(url)});
    numbersByURL_.emplace(url, number);
    return number;
}

// Messages that only the server has are left out.
void RecordLane::addRecord(const IndexedMessageCandidate& candidate, MadeRecords& made) {
    const std::uint32_t number = mailboxNumber(candidate.mailboxURL);
    Mailbox& mailbox = mailboxes_[number];
    ++mailbox.candidates;
    MessageFileIndex::Bucket* bucket = files_.bucketOfExisting(*mailbox.files, candidate.rowID);
    if (bucket == nullptr) return;
    made.records.emplace_back();
    made.orders.push_back({candidate.date, candidate.rowID});
    made.mailboxes.push_back(number);
    try {
        const FileURL file(SharedText(bucket->folder->filePath(candidate.rowID)));
        const auto stored = files_.storedAttachments(*bucket, candidate.rowID);
        made.records.back() = parseIndexedMessage(file, candidate, stored, texts_, timing_);
    } catch (const std::exception&) {
        made.records.back().reset(); // one message that can't be parsed doesn't stop a scan
    }
}

} // namespace corvane::mailstore
