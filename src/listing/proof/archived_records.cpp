#include "listing/proof/archived_records.h"

#include <utility>

#include "records/archived/stable_id.h"

namespace corvane {

std::shared_ptr<const ArchivedRecords> ArchivedRecords::make(SharedEntryList entries) {
    auto records = std::make_shared<ArchivedRecords>();
    records->entries_ = std::move(entries);
    const auto& all = *records->entries_;
    records->lastOfBaseID_.reserve(all.size());
    records->previous_.reserve(all.size());
    for (Position position = 0; position < all.size(); ++position) {
        const auto [last, isNew] = records->lastOfBaseID_.try_emplace(baseID(all[position].record), position);
        records->previous_.push_back(isNew ? none : std::exchange(last->second, position));
    }
    return records;
}

} // namespace corvane
