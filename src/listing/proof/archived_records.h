// The entries of all archives by the message that they are of. Immutable once made, shared between threads.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "records/archived/archive_records.h"

namespace corvane {

class ArchivedRecords {
  public:
    // `entries` isn't null. Linear in the entries.
    static std::shared_ptr<const ArchivedRecords> make(SharedEntryList entries);

    [[nodiscard]] const SharedEntryList& entries() const { return entries_; }

    // Calls `visit(const ArchivedEntry&)` for each entry of a base id.
    template <class Visit>
    void visit(std::string_view baseID, const Visit& visit) const {
        const auto last = lastOfBaseID_.find(baseID);
        if (last == lastOfBaseID_.end()) return;
        for (Position position = last->second; position != none; position = previous_[position])
            visit((*entries_)[position]);
    }

  private:
    using Position = std::uint32_t;

    static constexpr Position none = UINT32_MAX;

    SharedEntryList entries_;
    std::unordered_map<std::string_view, Position> lastOfBaseID_; // the keys are characters of the entries
    std::vector<Position> previous_;                              // the one before with the same base id
};

using SharedArchivedRecords = std::shared_ptr<const ArchivedRecords>;

} // namespace corvane
