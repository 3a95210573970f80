// The records of an archive's index while something is added to them. Linear in the records, without a look
// at the disk. Used by one thread.
#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "records/archived/archive_records.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane::archive {

// Records with an id of their own each, found by the message that they belong to.
class IndexRecords {
  public:
    IndexRecords() = default;
    explicit IndexRecords(std::vector<ArchivedEmailRecord> records);

    [[nodiscard]] const std::vector<ArchivedEmailRecord>& all() const noexcept { return records_; }

    // The positions of the records with this base id, ascending.
    [[nodiscard]] std::vector<std::size_t> ofMessage(std::string_view baseID) const;

    [[nodiscard]] bool hasID(std::string_view id) const { return ids_.contains(id); }

    // The smallest number from this one on for which "<base id>#v<number>" is nobody's id.
    [[nodiscard]] std::size_t freeVariant(std::string_view baseID, std::size_t number) const;

    // The id has to be new.
    void add(ArchivedEmailRecord record);

    // Takes away the records at these ascending positions; the rest keeps its order.
    void remove(const std::vector<std::size_t>& positions);

    [[nodiscard]] std::vector<ArchivedEmailRecord> release() &&;

  private:
    void know(std::size_t position);

    std::vector<ArchivedEmailRecord> records_;
    SharedTextSet ids_;
    std::unordered_multimap<std::string_view, std::size_t> byBaseID_; // keys live in the records
};

// What a record says of its message, as a scan has it.
void setMessageFields(ArchivedEmailRecord& record, const MailMessageRecord& message);

// "<base id>#v<number>".
SharedText variantID(std::string_view baseID, std::size_t number);

// Brings together what two programs have written: `theirs` with all records of `ours` that it hasn't. Two
// records with one id and one content are one, which has a hash if either had; of other content ours becomes
// another variant. The creation is the earlier one.
EmailArchiveIndex mergedIndexes(const EmailArchiveIndex& ours, EmailArchiveIndex theirs);

} // namespace corvane::archive
