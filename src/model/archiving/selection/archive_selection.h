// Which messages are ticked, as a value: a copy is a snapshot and costs next to nothing, at any number of
// ticks. Large sets are shared and never changed; single ticks are kept beside them.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "text/shared_text.h"

namespace corvane {

class ArchiveSelection {
  public:
    ArchiveSelection() = default;

    ArchiveSelection(std::shared_ptr<const SharedTextSet> ids) // NOLINT(google-explicit-constructor)
      : base_(std::move(ids))
      , size_(base_->size()) {}

    ArchiveSelection(SharedTextSet ids) // NOLINT(google-explicit-constructor)
      : ArchiveSelection(std::make_shared<const SharedTextSet>(std::move(ids))) {}

    [[nodiscard]] bool contains(std::string_view id) const {
        return (base_->find(id) != base_->end()) != (toggled_.find(id) != toggled_.end());
    }

    [[nodiscard]] std::size_t size() const { return size_; }

    [[nodiscard]] bool empty() const { return size_ == 0; }

    // It is these very ids, known without a look at each.
    [[nodiscard]] bool isExactly(const std::shared_ptr<const SharedTextSet>& ids) const {
        return base_ == ids && toggled_.empty();
    }

    void toggle(std::string_view id) {
        contains(id) ? --size_ : ++size_;
        const auto known = toggled_.find(id);
        if (known == toggled_.end())
            toggled_.insert(SharedText(id));
        else
            toggled_.erase(known);
    }

    // The same ticks as one shared set: what a job gives back that has changed many.
    [[nodiscard]] ArchiveSelection joined() const {
        if (toggled_.empty()) return *this;
        SharedTextSet ids;
        ids.reserve(size_);
        for (const SharedText& id : *base_) {
            if (!toggled_.contains(id)) ids.insert(id);
        }
        for (const SharedText& id : toggled_) {
            if (!base_->contains(id)) ids.insert(id);
        }
        return {std::move(ids)};
    }

    // True for copies that were changed alike, too.
    friend bool operator==(const ArchiveSelection&, const ArchiveSelection&) = default;

  private:
    std::shared_ptr<const SharedTextSet> base_ = std::make_shared<const SharedTextSet>();
    std::size_t size_ = 0;
    SharedTextSet toggled_; // ticked though not in the base, or the other way round
};

} // namespace corvane
