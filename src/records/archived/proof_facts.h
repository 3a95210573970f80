// What is known of files that were read for a proof, by their paths: the memory of
// records/stores/proof_store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "records/archived/file_readings.h"
#include "text/position_table.h"

namespace corvane {

// One reading a path. Paths lie one behind another in a single text, so that hundreds of thousands of
// readings are loaded and copied at once. One thread at a time to change, any number to ask.
class ReadingTable {
  public:
    void reserve(std::size_t count);

    // Replaces an earlier reading of that path, of which the hash of the body stays if all bytes are the same
    // and nobody needed it this time.
    void set(std::string_view path, const FileReading& reading);

    // Null for a path that was never read. Valid until the next change.
    [[nodiscard]] const FileReading* find(std::string_view path) const;

    [[nodiscard]] std::size_t size() const { return rows_.size(); }

    // Calls `visit(path, reading)` for each, in the order in which they came.
    template <class Visit>
    void forEach(const Visit& visit) const {
        for (std::size_t at = 0; at < rows_.size(); ++at)
            visit(pathAt(static_cast<PositionTable::Position>(at)), rows_[at].reading);
    }

    // Takes the readings of these paths away. A pass over all.
    void remove(const std::vector<std::string>& paths);

  private:
    struct Row {
        std::uint64_t start = 0;
        std::uint64_t length = 0;
        FileReading reading;
    };

    [[nodiscard]] std::string_view pathAt(PositionTable::Position position) const {
        const Row& row = rows_[position];
        return std::string_view(paths_).substr(row.start, row.length);
    }

    std::string paths_;
    std::vector<Row> rows_;
    PositionTable positions_;
};

// Readings that came together, as they are added to the facts and to the store.
struct ReadingBatch {
    std::vector<CopyReading> copies;
    std::map<std::string, std::vector<ArchivedFileReading>> archived; // by the archive's root

    [[nodiscard]] bool isEmpty() const { return copies.empty() && archived.empty(); }

    void append(ReadingBatch other);
};

// Files whose readings go.
struct ReadingPaths {
    std::vector<std::string> copies;
    std::map<std::string, std::vector<std::string>> archived; // by the archive's root

    [[nodiscard]] bool isEmpty() const { return copies.empty() && archived.empty(); }

    void append(ReadingPaths other);
};

struct ProofFacts {
    ReadingTable copies;
    std::map<std::string, ReadingTable, std::less<>> archived; // by root, then by path below it

    // Null for a file that was never read. Valid until the next change.
    [[nodiscard]] const FileReading* archivedReading(std::string_view root,
                                                     std::string_view relativePath) const;

    void add(const ReadingBatch& batch);
    void remove(const ReadingPaths& paths);

    // Whether what is known here of a file of the batch is other than that and would be believed: of an
    // original while its size and times are the same, of an archived file whatever they are, since its disk
    // may be away.
    [[nodiscard]] bool areContradictedBy(const ReadingBatch& batch) const;

    [[nodiscard]] bool isEmpty() const { return copies.size() == 0 && archived.empty(); }
};

using SharedProofFacts = std::shared_ptr<const ProofFacts>;

} // namespace corvane
