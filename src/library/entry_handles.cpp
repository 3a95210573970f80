#include "library/entry_handles.h"

#include <algorithm>

namespace corvane {

std::string entryHandle(std::string_view entryID) {
    return handleDigits(handleValue(entryID), fullHandleDigits);
}

EntryHandles::EntryHandles(const std::vector<ArchivedEntry>& entries)
  : entries_(entries) {
    hashes_.reserve(entries.size());
    sorted_.reserve(entries.size());
    for (const ArchivedEntry& entry : entries) {
        sorted_.emplace_back(handleValue(entry.id()), static_cast<EntryPosition>(hashes_.size()));
        hashes_.push_back(sorted_.back().first);
    }
    std::ranges::sort(sorted_);
}

std::string EntryHandles::shortest(EntryPosition position) const {
    const Hash hash = hashes_[position];
    const auto place = std::ranges::lower_bound(sorted_, std::pair(hash, position));
    std::size_t digits = shortestHandleDigits;
    if (place != sorted_.begin()) digits = std::max(digits, commonHandleDigits(hash, (place - 1)->first) + 1);
    if (place + 1 != sorted_.end())
        digits = std::max(digits, commonHandleDigits(hash, (place + 1)->first) + 1);
    return handleDigits(hash, std::min(digits, fullHandleDigits));
}

std::vector<EntryPosition> EntryHandles::find(std::string_view name) const {
    std::vector<EntryPosition> byRecord;
    for (EntryPosition position = 0; position < entries_.size(); ++position) {
        const ArchivedEntry& entry = entries_[position];
        if (!name.ends_with(entry.record.id.view())) continue;
        if (name == entry.record.id) byRecord.push_back(position);
        if (name == entry.id()) return {position};
    }
    return byRecord.empty() ? withHandle(name) : byRecord;
}

std::vector<EntryPosition> EntryHandles::withHandle(std::string_view digits) const {
    const auto range = handlesBeginningWith(digits);
    if (!range) return {};
    std::vector<EntryPosition> found;
    for (auto place = std::ranges::lower_bound(sorted_, std::pair(range->first, EntryPosition{0}));
         place != sorted_.end() && place->first <= range->last; ++place)
        found.push_back(place->second);
    std::ranges::sort(found);
    return found;
}

} // namespace corvane
