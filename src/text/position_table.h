// Finds the places of texts in a list that lies elsewhere: an open-addressed table of hashes and positions,
// eight bytes an entry and no allocation of its own for each. For lists of hundreds of thousands of records,
// where the nodes of a standard map cost more than the texts that they find. One thread at a time to change,
// any number to ask.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane {

class PositionTable {
  public:
    using Position = std::uint32_t;

    // Room for this many texts without growth.
    void reserve(std::size_t count) {
        if (count * 2 > slots_.size()) resize(std::bit_ceil(count * 2));
    }

    [[nodiscard]] std::size_t size() const { return size_; }

    // The position under which the text is known and false, or the given one and true when it is new.
    // `textAt(position)` gives the text of a known one.
    template <class TextAt>
    std::pair<Position, bool> insert(std::string_view text, Position position, const TextAt& textAt) {
        reserve(size_ + 1);
        const std::uint32_t hash = hashOf(text);
        Slot& slot = slots_[find(text, hash, textAt)];
        if (slot.place != 0) return {slot.place - 1, false};
        slot = {.hash = hash, .place = position + 1};
        ++size_;
        return {position, true};
    }

    template <class TextAt>
    [[nodiscard]] std::optional<Position> position(std::string_view text, const TextAt& textAt) const {
        if (size_ == 0) return std::nullopt;
        const Slot& slot = slots_[find(text, hashOf(text), textAt)];
        return slot.place == 0 ? std::nullopt : std::optional(slot.place - 1);
    }

  private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = 0; // the position and one; 0 for none
    };

    static constexpr std::size_t smallest = 64;

    static std::uint32_t hashOf(std::string_view text) noexcept {
        const std::size_t hash = std::hash<std::string_view>()(text);
        return static_cast<std::uint32_t>(hash ^ hash >> 32);
    }

    // The slot of the text, or the free one where it belongs.
    template <class TextAt>
    [[nodiscard]] std::size_t find(std::string_view text, std::uint32_t hash, const TextAt& textAt) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t index = hash & mask;
        while (slots_[index].place != 0) {
            if (slots_[index].hash == hash && std::string_view(textAt(slots_[index].place - 1)) == text)
                break;
            index = (index + 1) & mask;
        }
        return index;
    }

    void resize(std::size_t count) {
        const std::vector<Slot> known = std::exchange(slots_, std::vector<Slot>(std::max(count, smallest)));
        const std::size_t mask = slots_.size() - 1;
        for (const Slot& slot : known) {
            if (slot.place == 0) continue;
            std::size_t index = slot.hash & mask;
            while (slots_[index].place != 0) index = (index + 1) & mask;
            slots_[index] = slot;
        }
    }

    std::vector<Slot> slots_;
    std::size_t size_ = 0;
};

} // namespace corvane
