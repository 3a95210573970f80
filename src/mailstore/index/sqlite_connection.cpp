#include "mailstore/index/sqlite_connection.h"

namespace corvane::mailstore {

namespace {

std::string lastMessage(sqlite3* handle) {
    const char* message = handle == nullptr ? nullptr : sqlite3_errmsg(handle);
    return message == nullptr ? "unknown sqlite error" : message;
}

} // namespace

ReadOnlyConnection::ReadOnlyConnection(const std::string& name, NameKind kind) {
    const int flags = SQLITE_OPEN_READONLY | (kind == NameKind::uri ? SQLITE_OPEN_URI : 0);
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(name.c_str(), &handle, flags, nullptr);
    handle_.reset(handle);
    if (result != SQLITE_OK) throw SqliteError(SqliteError::Step::open, lastMessage(handle));
    sqlite3_busy_timeout(handle, static_cast<int>(busyPatience.count()));
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
}

Statement::Statement(const ReadOnlyConnection& connection, const char* sql)
  : SqliteStatement(connection.handle(), sql) {
    if (!*this) throw SqliteError(SqliteError::Step::prepare, lastMessage(connection.handle()));
}

} // namespace corvane::mailstore
