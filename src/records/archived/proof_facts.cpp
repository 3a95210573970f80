#include "records/archived/proof_facts.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <unordered_set>
#include <utility>

namespace corvane {

namespace {

template <class List>
void moveAll(List& from, List& to) {
    to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
}

bool contradicts(const FileReading& later, const FileReading* known) {
    return known != nullptr && (known->outcome != later.outcome || known->hash != later.hash);
}

} // namespace

void ReadingTable::reserve(std::size_t count) {
    rows_.reserve(count);
    positions_.reserve(count);
}

void ReadingTable::set(std::string_view path, const FileReading& reading) {
    const auto textAt = [this](PositionTable::Position position) { return pathAt(position); };
    const auto next = static_cast<PositionTable::Position>(rows_.size());
    const auto [position, isNew] = positions_.insert(path, next, textAt);
    if (!isNew) {
        FileReading& known = rows_[position].reading;
        const auto bodyHash = known.hash == reading.hash ? known.bodyHash : std::nullopt;
        known = reading;
        if (!known.bodyHash) known.bodyHash = bodyHash;
        return;
    }
    rows_.push_back({paths_.size(), path.size(), reading});
    paths_ += path;
}

const FileReading* ReadingTable::find(std::string_view path) const {
    const auto position =
        positions_.position(path, [this](PositionTable::Position known) { return pathAt(known); });
    return position ? &rows_[*position].reading : nullptr;
}

void ReadingTable::remove(const std::vector<std::string>& paths) {
    const std::unordered_set<std::string_view> removed(paths.begin(), paths.end());
    ReadingTable kept;
    kept.reserve(rows_.size());
    forEach([&](std::string_view path, const FileReading& reading) {
        if (!removed.contains(path)) kept.set(path, reading);
    });
    *this = std::move(kept);
}

void ReadingBatch::append(ReadingBatch other) {
    moveAll(other.copies, copies);
    for (auto& [root, readings] : other.archived) moveAll(readings, archived[root]);
}

void ReadingPaths::append(ReadingPaths other) {
    moveAll(other.copies, copies);
    for (auto& [root, paths] : other.archived) moveAll(paths, archived[root]);
}

const FileReading* ProofFacts::archivedReading(std::string_view root, std::string_view relativePath) const {
    const auto table = archived.find(root);
    return table == archived.end() ? nullptr : table->second.find(relativePath);
}

void ProofFacts::add(const ReadingBatch& batch) {
    for (const CopyReading& copy : batch.copies) copies.set(copy.path, copy.reading);
    for (const auto& [root, readings] : batch.archived) {
        ReadingTable& table = archived[root];
        for (const ArchivedFileReading& file : readings) table.set(file.relativePath, file.reading);
    }
}

void ProofFacts::remove(const ReadingPaths& paths) {
    if (!paths.copies.empty()) copies.remove(paths.copies);
    for (const auto& [root, removed] : paths.archived) {
        const auto table = archived.find(root);
        if (table == archived.end()) continue;
        table->second.remove(removed);
        if (table->second.size() == 0) archived.erase(table);
    }
}

bool ProofFacts::areContradictedBy(const ReadingBatch& batch) const {
    const auto contradictsCopy = [this](const CopyReading& copy) {
        const FileReading* const known = copies.find(copy.path);
        return contradicts(copy.reading, known) && known->stamp == copy.reading.stamp;
    };
    if (std::ranges::any_of(batch.copies, contradictsCopy)) return true;
    return std::ranges::any_of(batch.archived, [this](const auto& ofRoot) {
        return std::ranges::any_of(ofRoot.second, [&](const ArchivedFileReading& file) {
            return contradicts(file.reading, archivedReading(ofRoot.first, file.relativePath));
        });
    });
}

} // namespace corvane
