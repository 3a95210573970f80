// Finding the rows of the full-text table that hold a text in one of their five columns, as SQL's LIKE tells
// it: without regard to the case of ASCII letters, everything else exactly.
//
// LIKE has to read every row. From three characters on, the index of trigrams says which rows come into
// question, and LIKE is asked of those only. The index may name more rows than LIKE finds, never fewer:
// - both read a text's bytes as the same characters, ill-formed ones too, and both stop at U+0000;
// - the tokenizer folds one character to one, and folds the ASCII letters as LIKE does, so characters that
//   are equal for LIKE have equal folds, and what LIKE finds in a column is in its sequence of trigrams.
// Ideographs have no case, nothing else folds to one, and to ASCII only what folds to "k" and "s": of a short
// text of nothing else the index names no row too many, and LIKE isn't asked again. That makes common words
// worth looking up. A text is left to LIKE
// alone when it has fewer than three characters (but see pair_search.h), holds U+0000 (where LIKE takes the
// pattern to end) or isn't UTF-8, when the table isn't ours, when the index names so many rows that looking
// them up takes longer than reading all, and whenever anything fails.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlite.h"
#include "text/shared_text.h"

namespace corvane::search {

// The pattern of LIKE that means: contains the text.
std::string likePattern(std::string_view text);

// A query of FTS5's own language for rows that may hold the text; absent for a text that the index can't be
// asked for. It has a bounded number of trigrams, however long the text is.
std::optional<std::string> trigramQuery(std::string_view text);

// Whether all of it is in U+3400 to U+9FFF. The text has to be well-formed.
bool areIdeographs(std::string_view text);

enum class ScannedTable {
    fullText,
    content, // of the full-text table, where that one is ours: the same rows in less time
};

// The record ids of all rows that hold the text. Absent after an error, whose code `database` then knows.
std::optional<SharedTextSet> idsByScan(sqlite3* database, std::string_view text,
                                       ScannedTable table = ScannedTable::fullText);

// 0 for an empty table, and after an error.
std::int64_t highestRowID(sqlite3* database);

// While it lives, all statements of the connection see the database as it was when it was made, and what the
// connection itself writes. Other threads may use the connection meanwhile, so it can't be a transaction.
class Snapshot {
  public:
    explicit Snapshot(sqlite3* database)
      : read_(database, "SELECT 1 FROM sqlite_schema;") {
        read_.step();
    }

    explicit operator bool() const { return read_.status() == SQLITE_ROW; }

  private:
    platform::SqliteStatement read_;
};

// Asks single records whether their rows hold a text, as LIKE tells it. One thread at a time.
class RecordTest {
  public:
    RecordTest(sqlite3* database, std::string_view text);

    // False where a record may have several rows, of which only one would be asked, and after an error.
    explicit operator bool() const { return hasOneRowEach_; }

    // False for one that has no row. Absent after an error.
    std::optional<bool> holds(std::string_view recordID);

  private:
    platform::SqliteStatement test_;
    bool hasOneRowEach_;
};

// Reads single rows. One thread at a time.
class RowLookups {
  public:
    // `flags` as of sqlite3_prepare_v3.
    explicit RowLookups(sqlite3* database, unsigned flags = 0);

    // The record ids of those rows that hold the text. Absent after an error.
    std::optional<SharedTextSet> idsHolding(std::string_view text, const std::vector<std::int64_t>& rows);

    // Adds the record ids of the rows. False after an error.
    bool addIDs(const std::vector<std::int64_t>& rows, SharedTextSet& ids);

  private:
    platform::SqliteStatement id_;
    platform::SqliteStatement test_;
};

// The same by way of the index, with its statements prepared. One thread at a time.
class TrigramStatements {
  public:
    // `flags` as of sqlite3_prepare_v3.
    explicit TrigramStatements(sqlite3* database, unsigned flags = 0);

    // Absent when the index can't be asked, something failed, or it isn't worth it.
    std::optional<SharedTextSet> ids(std::string_view text);

  private:
    std::optional<std::vector<std::int64_t>> candidateRows(std::int64_t rowsOfTableForOne);

    sqlite3* database_;
    platform::SqliteStatement candidates_;
    RowLookups lookups_;
};

} // namespace corvane::search
