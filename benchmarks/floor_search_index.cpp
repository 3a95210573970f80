// What a search of the full-text database can't do without, as plain SQLite calls: floor_search_index
// trigram DATABASE ROUNDS TEXT (rows that the index names, then LIKE on them) | scan DATABASE ROUNDS TEXT
// (LIKE on every row) | body DATABASE ROUNDS | insert DATABASE ROUNDS (copies rows into a database of its
// own). Prints the processor seconds of one round.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <unordered_set>
#include <vector>

#include <sqlite3.h>
#include <unistd.h>

namespace {

constexpr const char* trigram =
    "SELECT record_id FROM email_fts WHERE email_fts MATCH ?2 AND (subject LIKE ?1 ESCAPE '\\' OR "
    "sender LIKE ?1 ESCAPE '\\' OR recipients LIKE ?1 ESCAPE '\\' OR attachments LIKE ?1 ESCAPE '\\' OR "
    "body LIKE ?1 ESCAPE '\\')";
constexpr const char* scan =
    "SELECT record_id FROM email_fts WHERE subject LIKE ?1 ESCAPE '\\' OR sender LIKE ?1 ESCAPE '\\' OR "
    "recipients LIKE ?1 ESCAPE '\\' OR attachments LIKE ?1 ESCAPE '\\' OR body LIKE ?1 ESCAPE '\\'";

double processorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

sqlite3_stmt* prepare(sqlite3* database, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK) std::exit(1);
    return statement;
}

std::size_t search(sqlite3* database, const char* sql, const std::string& text) {
    sqlite3_stmt* statement = prepare(database, sql);
    const std::string pattern = "%" + text + "%";
    const std::string phrase = "\"" + text + "\"";
    sqlite3_bind_text(statement, 1, pattern.c_str(), -1, SQLITE_STATIC);
    if (sql == trigram) sqlite3_bind_text(statement, 2, phrase.c_str(), -1, SQLITE_STATIC);
    std::unordered_set<std::string> ids; // what a search gives: an id may have several rows
    while (sqlite3_step(statement) == SQLITE_ROW)
        ids.emplace(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
    sqlite3_finalize(statement);
    return ids.size();
}

std::size_t bodies(sqlite3* database, long rounds) {
    sqlite3_stmt* row = prepare(database, "SELECT fts_rowid FROM record_map WHERE record_id = ?");
    sqlite3_stmt* body = prepare(database, "SELECT body FROM email_fts WHERE rowid = ?");
    std::size_t bytes = 0;
    for (long number = 0; number < rounds; ++number) {
        const std::string id = "mid:" + std::to_string(number * 7919 % 20000) + "@example.com";
        sqlite3_bind_text(row, 1, id.c_str(), -1, SQLITE_STATIC);
        if (sqlite3_step(row) != SQLITE_ROW) std::exit(1);
        sqlite3_bind_int64(body, 1, sqlite3_column_int64(row, 0));
        if (sqlite3_step(body) != SQLITE_ROW) std::exit(1);
        bytes += std::string(reinterpret_cast<const char*>(sqlite3_column_text(body, 0))).size();
        sqlite3_reset(row);
        sqlite3_reset(body);
    }
    return bytes;
}

// The rows are read before the clock starts.
double insertSeconds(sqlite3* source, const std::string& target, long rounds) {
    std::vector<std::vector<std::string>> rows;
    sqlite3_stmt* read = prepare(source, "SELECT * FROM email_fts LIMIT ?");
    sqlite3_bind_int64(read, 1, rounds);
    while (sqlite3_step(read) == SQLITE_ROW) {
        rows.emplace_back();
        for (int column = 0; column < 6; ++column)
            rows.back().emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(read, column)));
    }
    sqlite3_finalize(read);
    sqlite3* database = nullptr;
    if (sqlite3_open(target.c_str(), &database) != SQLITE_OK) std::exit(1);
    sqlite3_exec(
        database,
        "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; CREATE VIRTUAL TABLE email_fts USING fts5("
        "record_id UNINDEXED, subject, sender, recipients, attachments, body, tokenize='trigram');",
        nullptr, nullptr, nullptr);
    const double start = processorSeconds();
    sqlite3_stmt* insert = prepare(database, "INSERT INTO email_fts VALUES(?,?,?,?,?,?)");
    for (std::size_t number = 0; number < rows.size(); ++number) {
        if (number % 150 == 0) sqlite3_exec(database, "BEGIN", nullptr, nullptr, nullptr);
        for (int column = 0; column < 6; ++column) {
            const std::string& text = rows[number][static_cast<std::size_t>(column)];
            sqlite3_bind_text(insert, column + 1, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        }
        if (sqlite3_step(insert) != SQLITE_DONE) std::exit(1);
        sqlite3_reset(insert);
        if (number % 150 == 149 || number + 1 == rows.size())
            sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    }
    return (processorSeconds() - start) / static_cast<double>(rows.size());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    const std::string mode = argv[1];
    const long rounds = std::stol(argv[3]);
    sqlite3* database = nullptr;
    if (sqlite3_open_v2(argv[2], &database, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) return 1;
    if (mode == "insert" && argc == 5) {
        std::printf("%.9f\n", insertSeconds(database, argv[4], rounds));
        return 0;
    }
    const double start = processorSeconds();
    std::size_t found = 0;
    if (mode == "body") {
        found = bodies(database, rounds);
    } else if (argc == 5) {
        for (long number = 0; number < rounds; ++number)
            found += search(database, mode == "trigram" ? trigram : scan, argv[4]);
    }
    std::printf("%.9f\n", (processorSeconds() - start) / static_cast<double>(rounds));
    return found > 0 ? 0 : 1;
}
