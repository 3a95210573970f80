// Makes an archive's index of its JSON text as that comes from the disk, so that the memory goes into the
// records and not into the text. Used by one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "records/archived/archive_records.h"

namespace corvane {

// An index comes from outside, and decoding takes memory: a larger file isn't read, and none is written. Room
// for more than a million records.
inline constexpr std::int64_t largestArchiveIndexBytes = std::int64_t{1} << 30;

// The records that one archive has in a list of entries, where they stand together.
struct KnownRecords {
    SharedEntryList entries{}; // null for none
    std::size_t first = 0;
    std::size_t count = 0;

    [[nodiscard]] const ArchivedEmailRecord& at(std::size_t i) const { return (*entries)[first + i].record; }

    [[nodiscard]] std::vector<ArchivedEmailRecord> all() const;
};

class ArchiveIndexDecoder {
  public:
    // Records that equal known ones share their texts: an index that is read again takes little memory.
    explicit ArchiveIndexDecoder(KnownRecords known = {});
    ArchiveIndexDecoder(ArchiveIndexDecoder&&) noexcept;
    ArchiveIndexDecoder& operator=(ArchiveIndexDecoder&&) noexcept;
    ~ArchiveIndexDecoder();

    // The next piece of the text, of any size. No effect after a piece that doesn't decode.
    void add(std::string_view piece);

    // Absent when the text wasn't an index as a whole. To be called once.
    std::optional<EmailArchiveIndex> finish();

  private:
    struct State;

    std::unique_ptr<State> state_;
};

} // namespace corvane
