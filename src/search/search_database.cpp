#include "search/search_database.h"

#include <algorithm>
#include <string_view>

#include "platform/files/writing/private_files.h"

namespace corvane::search {

namespace {

// Far above what a row of ours holds (2 MiB of text), far below what would take all memory.
constexpr int maximumRowBytes = 128 << 20;

constexpr int busyMilliseconds = 5000;

constexpr const char* pragmas =
    "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA busy_timeout=5000;";

// Part of the file's format, comments included: SQLite keeps the text of a definition.
constexpr const char* schema = R"(CREATE TABLE IF NOT EXISTS meta(key TEXT PRIMARY KEY, value TEXT);
CREATE VIRTUAL TABLE IF NOT EXISTS email_fts USING fts5(
    record_id UNINDEXED, subject, sender, recipients, attachments, body,
    tokenize='trigram'
);
-- record_id 是 FTS5 的 UNINDEXED 列:`WHERE record_id = ?` 只能全表扫描(实测 2 万封的
-- 库要 1.2s/次)。列表每行取正文预览都走这条路 → 一屏十几行就是十几秒 CPU,还会占满并发
-- 线程池、把归档索引加载一起拖慢。这张映射表给 record_id 建了真正的主键索引,查到 rowid
-- 后按 rowid 取正文是 0.004s(FTS5 对 rowid 是直接定位)。
CREATE TABLE IF NOT EXISTS record_map(record_id TEXT PRIMARY KEY, fts_rowid INTEGER NOT NULL);
)";

constexpr std::string_view fullTextDefinition =
    "CREATEVIRTUALTABLEemail_ftsUSINGfts5("
    "record_idUNINDEXED,subject,sender,recipients,attachments,body,tokenize='trigram')";

platform::SqliteConnection connect(const std::string& path) {
    sqlite3* handle = nullptr;
    platform::makePrivateFile(path);
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX;
    const int result = sqlite3_open_v2(path.c_str(), &handle, flags, nullptr);
    platform::SqliteConnection database(handle);
    if (result != SQLITE_OK) return nullptr;
    // Before the pragmas, which stop at the first that fails: a change to WAL doesn't wait by itself.
    sqlite3_busy_timeout(handle, busyMilliseconds);
    platform::distrustSchema(handle, maximumRowBytes);
    execute(handle, pragmas);
    return database;
}

} // namespace

int execute(sqlite3* database, const char* sql) {
    return sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
}

platform::SqliteConnection openSearchDatabase(const std::string& path, bool& isDamaged) {
    isDamaged = false;
    auto database = connect(path);
    if (!database) return nullptr;
    const int status = execute(database.get(), schema);
    isDamaged = meansDamage(status);
    return status == SQLITE_OK ? std::move(database) : nullptr;
}

bool hasTrigramTable(sqlite3* database) {
    platform::SqliteStatement query(database, "SELECT sql FROM sqlite_schema WHERE name = 'email_fts';");
    if (!query.step()) return false;
    std::string definition(query.text(0).value_or(""));
    std::erase_if(definition, [](char character) { return character == ' ' || character == '\n'; });
    return definition == fullTextDefinition;
}

int makeTablesAnew(sqlite3* database) {
    int status = execute(database, "BEGIN IMMEDIATE;");
    if (status != SQLITE_OK) return status;
    for (const char* sql : {"DROP TABLE email_fts; DELETE FROM record_map;", schema, "COMMIT;"}) {
        if (status == SQLITE_OK) status = execute(database, sql);
    }
    if (status != SQLITE_OK) execute(database, "ROLLBACK;");
    return status;
}

// https://sqlite.org/c3ref/c_dbconfig_defensive.html, SQLITE_DBCONFIG_RESET_DATABASE.
platform::SqliteConnection openAfterReset(const std::string& path) {
    auto database = connect(path);
    if (!database) return nullptr;
    sqlite3_db_config(database.get(), SQLITE_DBCONFIG_RESET_DATABASE, 1, nullptr);
    const int result = execute(database.get(), "VACUUM;");
    sqlite3_db_config(database.get(), SQLITE_DBCONFIG_RESET_DATABASE, 0, nullptr);
    if (result != SQLITE_OK) return nullptr;
    execute(database.get(), pragmas);
    return execute(database.get(), schema) == SQLITE_OK ? std::move(database) : nullptr;
}

} // namespace corvane::search
