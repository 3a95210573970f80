#include "platform/sqlite.h"

namespace corvane::platform {

void distrustSchema(sqlite3* database, int maximumRowBytes) noexcept {
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH, maximumRowBytes);
    sqlite3_exec(database, "PRAGMA cell_size_check=ON; PRAGMA mmap_size=0;", nullptr, nullptr, nullptr);
}

SqliteStatement::SqliteStatement(sqlite3* connection, const char* sql, unsigned flags) {
    sqlite3_stmt* handle = nullptr;
    status_ = sqlite3_prepare_v3(connection, sql, -1, flags, &handle, nullptr);
    handle_.reset(handle);
    if (status_ == SQLITE_OK) status_ = SQLITE_MISUSE;
}

void SqliteStatement::bindText(int index, std::string_view text) {
    // SQLite takes a null pointer for NULL, which an empty text isn't.
    sqlite3_bind_text64(handle_.get(), index, text.empty() ? "" : text.data(), text.size(), SQLITE_TRANSIENT,
                        SQLITE_UTF8);
}

void SqliteStatement::bindInteger(int index, std::int64_t value) {
    sqlite3_bind_int64(handle_.get(), index, value);
}

void SqliteStatement::bindBlob(int index, std::span<const std::uint8_t> bytes) {
    sqlite3_bind_blob64(handle_.get(), index, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

void SqliteStatement::bindPointer(int index, void* pointer, const char* type) {
    sqlite3_bind_pointer(handle_.get(), index, pointer, type, nullptr);
}

bool SqliteStatement::step() {
    if (handle_) status_ = sqlite3_step(handle_.get());
    return status_ == SQLITE_ROW;
}

void SqliteStatement::reset() {
    rewind();
    if (handle_) sqlite3_clear_bindings(handle_.get());
}

void SqliteStatement::rewind() {
    sqlite3_reset(handle_.get());
}

std::optional<std::string_view> SqliteStatement::text(int column) const {
    const auto* characters = sqlite3_column_text(handle_.get(), column);
    if (characters == nullptr) return std::nullopt;
    return std::string_view(reinterpret_cast<const char*>(characters),
                            static_cast<std::size_t>(sqlite3_column_bytes(handle_.get(), column)));
}

std::span<const std::uint8_t> SqliteStatement::blob(int column) const {
    const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(handle_.get(), column));
    if (bytes == nullptr) return {};
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(handle_.get(), column))};
}

} // namespace corvane::platform
