// Which rows have a column that ends with two given characters: the one place of a text that the index of
// trigrams doesn't tell of, since no trigram begins there. Gathered by one pass over the texts, about a
// quarter of what LIKE takes over them, and kept until the database has changed, in a file beside it
// too, since most programs that search end after one question. One thread at a time.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlite.h"
#include "records/stores/derived_file.h"

namespace corvane::search {

// SQLite reads U+FFFE and U+FFFF as U+FFFD.
bool holdsNoncharacter(std::string_view text);

class ColumnEnds {
  public:
    // Gathers the ends again unless nothing was written since, by this connection or another one, or what the
    // file has is of the database as it is. False after an error. What it gathered is true for as long as the
    // caller's read goes on.
    bool refresh(sqlite3* database);

    // Adds all rows in which LIKE may find the pair at the end of a column, and perhaps others. The pair has
    // to be two well-formed characters.
    void addRowsEndingWith(std::string_view pair, std::vector<std::int64_t>& rows) const;

  private:
    static constexpr std::size_t columnCount = 5;

    struct Row {
        std::int64_t id;
        std::array<std::uint32_t, columnCount> ends;
    };

    struct Version {
        std::int64_t ofOthers = -1; // changed by what other connections commit
        std::int64_t own = -1;      // changed by what this one writes

        bool operator==(const Version&) const = default;
    };

    static Version currentVersion(sqlite3* database);
    bool gather(sqlite3* database);
    bool restore(const std::string& databasePath);
    void keep(const std::string& databasePath) const;

    Version version_;
    std::vector<Row> rows_;           // empty while the file answers
    std::optional<DerivedFile> kept_; // present when it is of this version
};

} // namespace corvane::search
