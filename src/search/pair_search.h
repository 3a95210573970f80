// Finding the rows that hold a text of two characters, as the statement with LIKE tells it, without reading
// all rows: the usual search of a Chinese reader.
//
// A pair is no trigram, but where a column holds it, either a trigram of the column begins with it, or the
// column ends with it. The first rows are named by a range of the index's terms, the second ones by
// ColumnEnds; LIKE then decides on both. The tokenizer itself tells how it folds the pair. Of
// ideographs the first rows are certain. A pair is left
// to the plain statement when it isn't sound UTF-8, holds U+0000 or a character that SQLite reads as another
// one, when the database isn't in UTF-8 (its terms then don't compare by bytes), when too many rows hold it,
// and whenever anything fails.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlite.h"
#include "search/column_ends.h"
#include "search/substring_search.h"
#include "text/shared_text.h"

namespace corvane::search {

// Two characters that the index can be asked for.
bool isPair(std::string_view text);

// One thread at a time. What it needs is prepared by the first search.
class PairStatements {
  public:
    explicit PairStatements(sqlite3* database)
      : database_(database) {}

    // Absent when the index can't be asked, something failed, or it isn't worth it.
    std::optional<SharedTextSet> ids(std::string_view pair);

  private:
    bool prepare();
    std::optional<std::vector<std::int64_t>> rowsOfTrigrams(std::string_view beginning, std::int64_t limit);
    std::optional<SharedTextSet> idsOf(std::string_view pair, std::vector<std::int64_t> rows);

    sqlite3* database_;
    platform::SqliteStatement occurrences_;
    std::optional<RowLookups> lookups_;
    ColumnEnds ends_;
};

} // namespace corvane::search
