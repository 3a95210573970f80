#include "mailstore/sqlite/sqlite_connection.h"

#include <utility>

namespace corvane::mailstore {

namespace {

std::string lastMessage(sqlite3* handle) {
    const char* message = handle == nullptr ? nullptr : sqlite3_errmsg(handle);
    return message == nullptr ? "unknown sqlite error" : message;
}

constexpr int longestValue = 64 << 20;  // bytes
constexpr int stepsBetweenLooks = 1000; // of SQLite's virtual machine

int isOver(void* readLimit) {
    const auto& limit = *static_cast<const ReadLimit*>(readLimit);
    return limit.stop.stop_requested() || std::chrono::steady_clock::now() >= limit.deadline ? 1 : 0;
}

} // namespace

ReadOnlyConnection::ReadOnlyConnection(const std::string& name, NameKind kind, ReadLimit limit)
  : limit_(std::make_unique<const ReadLimit>(std::move(limit))) {
    const int flags = SQLITE_OPEN_READONLY | (kind == NameKind::uri ? SQLITE_OPEN_URI : 0);
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(name.c_str(), &handle, flags, nullptr);
    handle_.reset(handle);
    if (result != SQLITE_OK) throw SqliteError(SqliteError::Step::open, result, lastMessage(handle));
    sqlite3_busy_timeout(handle, static_cast<int>(busyPatience.count()));
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, longestValue);
    sqlite3_progress_handler(handle, stepsBetweenLooks, isOver, const_cast<ReadLimit*>(limit_.get()));
}

Statement::Statement(const ReadOnlyConnection& connection, const char* sql)
  : SqliteStatement(connection.handle(), sql) {
    if (!*this) throw SqliteError(SqliteError::Step::prepare, status(), lastMessage(connection.handle()));
}

} // namespace corvane::mailstore
