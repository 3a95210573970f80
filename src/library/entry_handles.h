// The names by which people call archived mail on a command line: its entry id, its record id where just one
// entry has that, or its handle, the first digits of SHA-256 over the entry id. Immutable once made, any
// thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "library/threads/thread_keys.h"
#include "records/archived/archive_records.h"
#include "records/archived/entry_handle.h"

namespace corvane {

// The handle with all its digits.
std::string entryHandle(std::string_view entryID);

class EntryHandles {
  public:
    // The list must outlive the handles.
    explicit EntryHandles(const std::vector<ArchivedEntry>& entries);

    // As many digits as tell the entry from every other one, six at least.
    [[nodiscard]] std::string shortest(EntryPosition position) const;

    // The entries that the name fits, in the order of their list: of an entry id, else of a record id, else
    // of a handle of six or more digits in either case. Empty when none has it, several when it isn't enough.
    [[nodiscard]] std::vector<EntryPosition> find(std::string_view name) const;

  private:
    using Hash = std::uint64_t; // the handle's 16 digits

    [[nodiscard]] std::vector<EntryPosition> withHandle(std::string_view digits) const;

    const std::vector<ArchivedEntry>& entries_;
    std::vector<Hash> hashes_; // by position
    std::vector<std::pair<Hash, EntryPosition>> sorted_;
};

} // namespace corvane
