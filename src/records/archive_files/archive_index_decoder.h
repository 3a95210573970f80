// Makes an archive's index of its JSON text as that comes from the disk, so that the memory goes into the
// records and not into the text. Used by one thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "records/archived/archive_records.h"

namespace corvane {

// An index comes from outside, and decoding takes memory: a larger file isn't read. Room for several hundred
// thousand records.
inline constexpr std::int64_t largestArchiveIndexBytes = std::int64_t{256} << 20;

class ArchiveIndexDecoder {
  public:
    ArchiveIndexDecoder();
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
