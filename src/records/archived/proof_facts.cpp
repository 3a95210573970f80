#include "records/archived/proof_facts.h"

#include <iterator>
#include <utility>

namespace corvane {

void ReadingTable::reserve(std::size_t count) {
    rows_.reserve(count);
    positions_.reserve(count);
}

void ReadingTable::set(std::string_view path, const FileReading& reading) {
    const auto textAt = [this](PositionTable::Position position) { return pathAt(position); };
    const auto next = static_cast<PositionTable::Position>(rows_.size());
    const auto [position, isNew] = positions_.insert(path, next, textAt);
    if (!isNew) {
        rows_[position].reading = reading;
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

void ReadingBatch::append(ReadingBatch other) {
    const auto moveAll = [](auto& from, auto& to) {
        to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
    };
    moveAll(other.copies, copies);
    for (auto& [root, readings] : other.archived) moveAll(readings, archived[root]);
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

} // namespace corvane
