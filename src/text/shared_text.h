// An immutable UTF-8 text that is shared, not copied.
//
// Records hold most of their fields as SharedText: a list of a million messages is copied, filtered and
// handed between threads without touching the characters, and the values that repeat in every record (the
// mailbox, the account, a placeholder) exist once. Eight bytes; the empty text owns nothing. Safe to copy
// and destroy from any thread, as std::shared_ptr is.
#pragma once

#include <atomic>
#include <compare>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "text/position_table.h"

namespace corvane {

class SharedText {
  public:
    SharedText() noexcept = default;

    SharedText(std::string_view text)
      : block_(text.empty() ? nullptr : makeBlock(text)) {} // NOLINT: implicit

    SharedText(const std::string& text)
      : SharedText(std::string_view(text)) {} // NOLINT: implicit

    SharedText(const char* text)
      : SharedText(std::string_view(text)) {} // NOLINT: implicit

    SharedText(const SharedText& other) noexcept
      : block_(other.block_) {
        retain();
    }

    SharedText(SharedText&& other) noexcept
      : block_(std::exchange(other.block_, nullptr)) {}

    SharedText& operator=(SharedText other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }

    ~SharedText() { release(); }

    [[nodiscard]] std::string_view view() const noexcept {
        return block_ == nullptr ? std::string_view() : std::string_view(characters(block_), block_->size);
    }

    operator std::string_view() const noexcept { return view(); } // NOLINT: implicit

    [[nodiscard]] std::string str() const { return std::string(view()); }

    [[nodiscard]] const char* c_str() const noexcept { return block_ == nullptr ? "" : characters(block_); }

    [[nodiscard]] bool empty() const noexcept { return block_ == nullptr; }

    [[nodiscard]] std::size_t size() const noexcept { return block_ == nullptr ? 0 : block_->size; }

    // True when both are the very same characters in memory: a cheap hint before a comparison.
    [[nodiscard]] bool sharesWith(const SharedText& other) const noexcept { return block_ == other.block_; }

    friend bool operator==(const SharedText& a, const SharedText& b) noexcept {
        return a.block_ == b.block_ || a.view() == b.view();
    }

    friend std::strong_ordering operator<=>(const SharedText& a, const SharedText& b) noexcept {
        return a.view() <=> b.view();
    }

    friend bool operator==(const SharedText& a, std::string_view b) noexcept { return a.view() == b; }

    friend bool operator==(const SharedText& a, const std::string& b) noexcept { return a.view() == b; }

    friend bool operator==(const SharedText& a, const char* b) noexcept { return a.view() == b; }

    friend std::ostream& operator<<(std::ostream& out, const SharedText& text) { return out << text.view(); }

  private:
    struct Block {
        std::atomic<std::uint32_t> references;
        std::uint32_t size;
    };

    static Block* makeBlock(std::string_view text);
    static void destroy(Block* block) noexcept;

    static const char* characters(const Block* block) noexcept {
        return reinterpret_cast<const char*>(block + 1);
    }

    void retain() const noexcept {
        if (block_ != nullptr) block_->references.fetch_add(1, std::memory_order_relaxed);
    }

    void release() noexcept {
        if (block_ != nullptr && block_->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
            destroy(block_);
    }

    Block* block_ = nullptr;
};

// Hash and equality that let a container of SharedText or std::string be asked with a string_view.
struct TextHash {
    using is_transparent = void;

    std::size_t operator()(std::string_view text) const noexcept {
        return std::hash<std::string_view>()(text);
    }
};

using TextEqual = std::equal_to<>;

using SharedTextSet = std::unordered_set<SharedText, TextHash, TextEqual>;

// Gives equal texts the same characters. Not thread-safe: one for each thread or job.
class TextInterner {
  public:
    SharedText operator()(std::string_view text) {
        if (text.empty()) return {};
        const auto next = static_cast<PositionTable::Position>(texts_.size());
        const auto [position, isNew] = positions_.insert(
            text, next, [&](PositionTable::Position known) { return texts_[known].view(); });
        if (isNew) texts_.emplace_back(text);
        return texts_[position];
    }

  private:
    std::vector<SharedText> texts_;
    PositionTable positions_;
};

} // namespace corvane

template <>
struct std::hash<corvane::SharedText> {
    std::size_t operator()(const corvane::SharedText& text) const noexcept {
        return std::hash<std::string_view>()(text.view());
    }
};

template <>
struct fmt::formatter<corvane::SharedText> : fmt::formatter<std::string_view> {
    template <class Context>
    auto format(const corvane::SharedText& text, Context& context) const {
        return fmt::formatter<std::string_view>::format(text.view(), context);
    }
};
