// Tells which entries a comparison with Mail was about. What it found counts for others of the same text
// only.
#pragma once

#include <cstdint>
#include <string>

#include "records/archived/archive_records.h"
#include "text/shared_text.h"

namespace corvane {

// The text is the same for the same entry ids and Message-IDs, whatever their order and however they were
// added.
class PresenceSignature {
  public:
    PresenceSignature() = default;

    // Of that many entries, as count() and sum() told of them.
    PresenceSignature(std::uint64_t count, std::uint64_t sum)
      : count_(count)
      , sum_(sum) {}

    void add(const SharedText& root, const ArchivedEmailRecord& record);
    void add(const PresenceSignature& others);

    [[nodiscard]] std::uint64_t count() const { return count_; }

    [[nodiscard]] std::uint64_t sum() const { return sum_; }

    [[nodiscard]] std::string text() const;

  private:
    std::uint64_t count_ = 0;
    std::uint64_t sum_ = 0;
    SharedText root_; // that was added last
    std::uint64_t rootHash_ = 0;
};

} // namespace corvane
