// Message-IDs that are looked for in the index, found by their text. Any number of threads may ask.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mailstore/sqlite/json_rows.h"
#include "text/position_table.h"

namespace corvane::mailstore {

class WantedIdentifiers {
  public:
    // In their normalized form; an empty one is none. The list and its texts must outlive the object.
    explicit WantedIdentifiers(const std::vector<std::string_view>& identifiers);

    // Which of them stand in the column "messageId" of the rows of a file, by position. Nullopt when it
    // can't be read as rows.
    [[nodiscard]] std::optional<std::vector<bool>> inRows(const std::string& rowsPath) const;

  private:
    using Position = PositionTable::Position;

    struct Found {
        bool isWhole = true; // the piece could be read
        std::vector<Position> positions;
    };

    [[nodiscard]] Found inPiece(const JsonRowPiece& piece, JsonRowParser& parser) const;
    const std::vector<std::string_view>& identifiers_;
    PositionTable positions_;
    std::vector<Position> firstOfSame_; // by position
};

} // namespace corvane::mailstore
