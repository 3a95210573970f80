// What is selected in the library's list: the entry that is shown, and those that a command acts on. Lives
// with the list on one thread. Entries are positions in one index; after another index was made, the
// selection is moved to it.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "library/library_index.h"

namespace corvane {

// The keys held at a click; shift goes before command.
struct SelectionKeys {
    bool shift = false;
    bool command = false;
};

class LibrarySelection {
  public:
    // The entry that is shown.
    [[nodiscard]] std::optional<EntryPosition> selectedID() const { return selected_; }

    [[nodiscard]] std::optional<EntryPosition> libraryAnchorID() const { return anchor_; }

    // In rising order, without repeats.
    [[nodiscard]] const std::vector<EntryPosition>& librarySelectedIDs() const { return marked_; }

    // A row that was clicked; `visible` is the flat list, not the grouped one. With shift everything from the
    // anchor to it, with command it is added or taken away, else it alone.
    void selectLibraryRow(EntryPosition entry, SelectionKeys keys, std::span<const EntryPosition> visible);

    // All of them; what is shown stays.
    void selectAll(std::span<const EntryPosition> visible) { mark(visible); }

    // Where nothing is shown yet, the latest of the first group; no effect without groups.
    void selectFirstVisibleIfNeeded(const GroupsView& visible);

    // After a search: where what is shown is no longer in the list, the latest of the first group is
    // selected, or none where there are no groups.
    void selectFirstVisibleIfGone(std::span<const EntryPosition> entries, const GroupsView& visible);

    [[nodiscard]] bool libraryRowSelected(EntryPosition entry) const;

    // Lets go of what isn't in the list: a command means nothing that can't be seen. What is shown stays.
    void keepVisible(std::span<const EntryPosition> visible);

    // The entry that is shown, as long as it is among these.
    [[nodiscard]] std::optional<EntryPosition> selectedEntry(std::span<const EntryPosition> entries) const;

    // The same entries in another index; those it doesn't have are no longer selected.
    [[nodiscard]] LibrarySelection movedTo(const ArchiveLibraryIndex& next,
                                           const ArchiveLibraryIndex& from) const;

    friend bool operator==(const LibrarySelection&, const LibrarySelection&) = default;

  private:
    void mark(std::span<const EntryPosition> entries);
    void toggle(EntryPosition entry);

    std::optional<EntryPosition> selected_;
    std::optional<EntryPosition> anchor_;
    std::vector<EntryPosition> marked_;
};

} // namespace corvane
