// The SQLite side of the search index: how its database is opened, what is in it, and how a damaged one is
// emptied. The file lies where others may have written it, so nothing in it is trusted: no triggers, no
// views, no functions from its schema, no writing past the engine. Nothing here throws: a failure is a null
// connection, false or an error code.
#pragma once

#include <string>

#include "platform/sqlite.h"

namespace corvane::search {

// Opens or creates the database and its tables. Null when that fails; `isDamaged` then tells whether what the
// file holds is the cause.
platform::SqliteConnection openSearchDatabase(const std::string& path, bool& isDamaged);

// The file is no database, a damaged one, or one with other tables: all statements here are constants, so one
// that SQLite finds wrong isn't ours to blame.
constexpr bool meansDamage(int sqliteStatus) {
    const int primary = sqliteStatus & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_ERROR;
}

// Runs statements that give no rows; SQLITE_OK or the first error, which ends them.
int execute(sqlite3* database, const char* sql);

// Whether the full-text table is the one that is made here, and so has its index of trigrams.
bool hasTrigramTable(sqlite3* database);

// Removes all rows in one step. Making the table anew takes no longer for a million rows than for one, and
// needs nothing of the old one to be sound. SQLITE_OK, or an error that left everything as it was.
int makeTablesAnew(sqlite3* database);

// Turns whatever the file holds into an empty database with its tables, in place: others may have it open.
// Null when that fails.
platform::SqliteConnection openAfterReset(const std::string& path);

} // namespace corvane::search
