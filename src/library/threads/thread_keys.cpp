#include "library/threads/thread_keys.h"

#include <deque>
#include <limits>
#include <string>

#include "library/threads/subject_key.h"
#include "text/position_table.h"

namespace corvane {

namespace {

constexpr std::uint32_t noSubject = std::numeric_limits<std::uint32_t>::max();

// Numbers for texts that lie elsewhere.
class TextNumbers {
    [[nodiscard]] auto textAt() const {
        return [this](std::uint32_t number) { return texts_[number]; };
    }

  public:
    explicit TextNumbers(std::size_t expected) {
        table_.reserve(expected);
        texts_.reserve(expected);
    }

    struct Numbered {
        std::uint32_t number;
        bool isNew;
    };

    Numbered add(std::string_view text) {
        const auto next = static_cast<std::uint32_t>(texts_.size());
        const auto [number, isNew] = table_.insert(text, next, textAt());
        if (isNew) texts_.push_back(text);
        return {number, isNew};
    }

    [[nodiscard]] std::optional<std::uint32_t> find(std::string_view text) const {
        return table_.position(text, textAt());
    }

    // The text of the last number, to be kept elsewhere.
    std::string_view& last() { return texts_.back(); }

  private:
    PositionTable table_;
    std::vector<std::string_view> texts_;
};

// The owner of each number: the first position that came with it.
using Owners = std::vector<EntryPosition>;

class ThreadMaker {
  public:
    explicit ThreadMaker(const std::vector<ArchivedEntry>& entries)
      : entries_(entries)
      , sets_(entries.size())
      , messages_(entries.size())
      , absent_(0) {}

    std::vector<EntryPosition> make(const std::stop_token& stop) {
        numberSubjects(stop);
        joinMessages();
        if (stop.stop_requested()) return {};
        joinReferences(stop);
        joinSubjects();
        if (stop.stop_requested()) return {};
        std::vector<EntryPosition> roots(entries_.size());
        for (EntryPosition position = 0; position < roots.size(); ++position)
            roots[position] = sets_.root(position);
        return roots;
    }

  private:
    void numberSubjects(const std::stop_token& stop);
    void joinMessages();
    void joinReferences(const std::stop_token& stop);
    void joinAbsent(EntryPosition position, std::string_view reference);
    void joinSubjects();

    const std::vector<ArchivedEntry>& entries_;
    ThreadUnionFind sets_;
    std::vector<std::uint32_t> subjects_; // by position
    std::vector<bool> joinsNothing_;      // by subject
    TextNumbers messages_;                // by Message-ID
    Owners messageOwners_;
    TextNumbers absent_;        // referenced Message-IDs that no entry has
    PositionTable absentPairs_; // subjects with such references
    std::vector<std::uint64_t> pairs_;
    Owners pairOwners_;
};

// Real subjects have numbers from 0 on in the order of their first entries.
void ThreadMaker::numberSubjects(const std::stop_token& stop) {
    TextNumbers known(entries_.size());
    std::deque<std::string> keys;
    subjects_.assign(entries_.size(), noSubject);
    for (EntryPosition position = 0; position < entries_.size(); ++position) {
        if (stop.stop_requested()) return;
        std::string key = subjectKeyOrEmpty(entries_[position].record.subject);
        if (key.empty()) continue;
        const auto [number, isNew] = known.add(key);
        subjects_[position] = number;
        if (!isNew) continue;
        joinsNothing_.push_back(key.starts_with(noSubjectPrefix));
        known.last() = keys.emplace_back(std::move(key));
    }
}

void ThreadMaker::joinMessages() {
    messageOwners_.reserve(entries_.size());
    for (EntryPosition position = 0; position < entries_.size(); ++position) {
        const auto& identifier = entries_[position].record.messageIdentifier;
        if (!identifier || identifier->empty()) continue;
        const auto [number, isNew] = messages_.add(*identifier);
        if (isNew) {
            messageOwners_.push_back(position);
        } else {
            sets_.unite(messageOwners_[number], position);
        }
    }
}

void ThreadMaker::joinReferences(const std::stop_token& stop) {
    for (EntryPosition position = 0; position < entries_.size(); ++position) {
        if (stop.stop_requested()) return;
        const auto& references = entries_[position].record.referencedMessageIdentifiers;
        if (!references) continue;
        for (const SharedText& reference : *references) {
            if (const auto known = messages_.find(reference)) {
                sets_.unite(messageOwners_[*known], position);
            } else {
                joinAbsent(position, reference);
            }
        }
    }
}

// Mail without a subject has a key of its own, which it shares with no other.
void ThreadMaker::joinAbsent(EntryPosition position, std::string_view reference) {
    const std::uint32_t subject = subjects_[position];
    if (subject == noSubject) return;
    const std::uint64_t pair = std::uint64_t{subject} << 32 | absent_.add(reference).number;
    const auto bytes = [](const std::uint64_t& value) {
        return std::string_view(reinterpret_cast<const char*>(&value), sizeof value);
    };
    const auto next = static_cast<std::uint32_t>(pairs_.size());
    const auto [number, isNew] =
        absentPairs_.insert(bytes(pair), next, [&](std::uint32_t known) { return bytes(pairs_[known]); });
    if (isNew) {
        pairs_.push_back(pair);
        pairOwners_.push_back(position);
    } else {
        sets_.unite(pairOwners_[number], position);
    }
}

void ThreadMaker::joinSubjects() {
    constexpr EntryPosition nobody = std::numeric_limits<EntryPosition>::max();
    Owners owners(joinsNothing_.size(), nobody);
    for (EntryPosition position = 0; position < entries_.size(); ++position) {
        const std::uint32_t subject = subjects_[position];
        if (subject == noSubject || joinsNothing_[subject]) continue;
        if (owners[subject] == nobody) {
            owners[subject] = position;
        } else {
            sets_.unite(owners[subject], position);
        }
    }
}

} // namespace

std::vector<EntryPosition> threadRoots(const std::vector<ArchivedEntry>& entries,
                                       const std::stop_token& stop) {
    return ThreadMaker(entries).make(stop);
}

} // namespace corvane
