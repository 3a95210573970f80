#include "library/entry_handles.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <system_error>

#include <fmt/format.h>

#include "platform/files/sha256.h"

namespace corvane {

namespace {

constexpr std::size_t bitsOfDigit = 4;

std::uint64_t hashOf(std::string_view entryID) {
    const platform::Sha256Digest digest = platform::sha256(entryID);
    std::uint64_t hash = 0;
    for (std::size_t byte = 0; byte < sizeof hash; ++byte)
        hash = hash << 8 | static_cast<unsigned char>(digest[byte]);
    return hash;
}

std::string digitsOf(std::uint64_t hash, std::size_t count) {
    return fmt::format("{:016x}", hash).substr(0, count);
}

// Digits that two handles begin with alike.
std::size_t commonDigits(std::uint64_t a, std::uint64_t b) {
    return static_cast<std::size_t>(std::countl_zero(a ^ b)) / bitsOfDigit;
}

} // namespace

std::string entryHandle(std::string_view entryID) {
    return digitsOf(hashOf(entryID), fullHandleDigits);
}

EntryHandles::EntryHandles(const std::vector<ArchivedEntry>& entries)
  : entries_(entries) {
    hashes_.reserve(entries.size());
    sorted_.reserve(entries.size());
    for (const ArchivedEntry& entry : entries) {
        sorted_.emplace_back(hashOf(entry.id()), static_cast<EntryPosition>(hashes_.size()));
        hashes_.push_back(sorted_.back().first);
    }
    std::ranges::sort(sorted_);
}

std::string EntryHandles::shortest(EntryPosition position) const {
    const Hash hash = hashes_[position];
    const auto place = std::ranges::lower_bound(sorted_, std::pair(hash, position));
    std::size_t digits = shortestHandleDigits;
    if (place != sorted_.begin()) digits = std::max(digits, commonDigits(hash, (place - 1)->first) + 1);
    if (place + 1 != sorted_.end()) digits = std::max(digits, commonDigits(hash, (place + 1)->first) + 1);
    return digitsOf(hash, std::min(digits, fullHandleDigits));
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
    if (digits.size() < shortestHandleDigits || digits.size() > fullHandleDigits) return {};
    Hash first = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), first, 16);
    if (error != std::errc() || end != digits.data() + digits.size()) return {};
    const std::size_t open = (fullHandleDigits - digits.size()) * bitsOfDigit;
    const Hash last = open == 0 ? first : ((first + 1) << open) - 1;
    first <<= open;
    std::vector<EntryPosition> found;
    for (auto place = std::ranges::lower_bound(sorted_, std::pair(first, EntryPosition{0}));
         place != sorted_.end() && place->first <= last; ++place)
        found.push_back(place->second);
    std::ranges::sort(found);
    return found;
}

} // namespace corvane
