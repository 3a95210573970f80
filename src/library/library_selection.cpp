#include "library/library_selection.h"

#include <algorithm>
#include <cstddef>

namespace corvane {

namespace {

// More are put in their order by a table, which is linear: one key selects all of a large list.
constexpr std::size_t fewEntries = 2'000;

// From one of the two entries to the other, both included; empty when one isn't in the list.
std::span<const EntryPosition> rangeBetween(std::span<const EntryPosition> list, EntryPosition a,
                                            EntryPosition b) {
    const auto first = std::ranges::find(list, a);
    const auto second = std::ranges::find(list, b);
    if (first == list.end() || second == list.end()) return {};
    const auto [start, last] = std::minmax(first, second);
    return {start, last + 1};
}

} // namespace

void LibrarySelection::selectLibraryRow(EntryPosition entry, SelectionKeys keys,
                                        std::span<const EntryPosition> visible) {
    const bool extends = keys.shift && anchor_.has_value();
    const auto range = extends ? rangeBetween(visible, *anchor_, entry) : std::span<const EntryPosition>();
    if (!range.empty()) {
        mark(range);
    } else if (keys.command) {
        toggle(entry);
        anchor_ = entry;
    } else {
        marked_ = {entry};
        // The anchor of a list that was filtered since stays, for when its entry is there again.
        if (!extends) anchor_ = entry;
    }
    selected_ = entry;
}

void LibrarySelection::selectFirstVisibleIfNeeded(const GroupsView& visible) {
    if (!selected_ && !visible.groups.empty()) selected_ = visible.groups.front().latest;
}

void LibrarySelection::selectFirstVisibleIfGone(std::span<const EntryPosition> entries,
                                                const GroupsView& visible) {
    if (!selected_ || selectedEntry(entries)) return;
    selected_.reset();
    selectFirstVisibleIfNeeded(visible);
}

void LibrarySelection::keepVisible(std::span<const EntryPosition> visible) {
    if (marked_.empty()) return;
    std::vector<bool> isVisible(std::size_t{marked_.back()} + 1);
    for (const EntryPosition entry : visible) {
        if (entry < isVisible.size()) isVisible[entry] = true;
    }
    std::erase_if(marked_, [&](EntryPosition entry) { return !isVisible[entry]; });
}

bool LibrarySelection::libraryRowSelected(EntryPosition entry) const {
    return marked_.empty() ? selected_ == entry : std::ranges::binary_search(marked_, entry);
}

std::optional<EntryPosition> LibrarySelection::selectedEntry(std::span<const EntryPosition> entries) const {
    if (!selected_ || std::ranges::find(entries, *selected_) == entries.end()) return std::nullopt;
    return selected_;
}

LibrarySelection LibrarySelection::movedTo(const ArchiveLibraryIndex& next,
                                           const ArchiveLibraryIndex& from) const {
    const auto moved = [&](EntryPosition position) { return next.position(from.entry(position).id()); };
    LibrarySelection selection;
    if (selected_) selection.selected_ = moved(*selected_);
    if (anchor_) selection.anchor_ = moved(*anchor_);
    for (const EntryPosition position : marked_) {
        if (const auto place = moved(position)) selection.marked_.push_back(*place);
    }
    std::ranges::sort(selection.marked_);
    return selection;
}

void LibrarySelection::mark(std::span<const EntryPosition> entries) {
    marked_.assign(entries.begin(), entries.end());
    if (marked_.size() <= fewEntries) {
        std::ranges::sort(marked_);
        return;
    }
    std::vector<bool> isMarked(std::size_t{std::ranges::max(entries)} + 1);
    for (const EntryPosition entry : entries) isMarked[entry] = true;
    marked_.clear();
    for (EntryPosition entry = 0; entry < isMarked.size(); ++entry) {
        if (isMarked[entry]) marked_.push_back(entry);
    }
}

void LibrarySelection::toggle(EntryPosition entry) {
    const auto place = std::ranges::lower_bound(marked_, entry);
    if (place != marked_.end() && *place == entry) {
        marked_.erase(place);
    } else {
        marked_.insert(place, entry);
    }
}

} // namespace corvane
