// Owners of SQLite's handles, for every folder that reads or writes a database. They never throw: what an
// error means is for each user to say. SQLite stands here because it is the system's own library, as files
// and processes are, and both the reader of Mail's store and the search index need it without needing each
// other.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include <sqlite3.h>

namespace corvane::platform {

struct CloseSqlite {
    void operator()(sqlite3* handle) const noexcept { sqlite3_close(handle); }
};

// Has to outlive its statements.
using SqliteConnection = std::unique_ptr<sqlite3, CloseSqlite>;

// For a database that somebody else may have changed: nothing that its schema names is run, and no text or
// row of more than so many bytes is taken. https://sqlite.org/security.html, "Untrusted SQLite Database
// Files".
void distrustSchema(sqlite3* database, int maximumRowBytes) noexcept;

// Any thread, one at a time.
class SqliteStatement {
  public:
    SqliteStatement() = default;

    // False afterwards when the text can't be prepared: sqlite3_errmsg of the connection then tells why.
    // `flags` as of sqlite3_prepare_v3.
    SqliteStatement(sqlite3* connection, const char* sql, unsigned flags = 0);

    explicit operator bool() const noexcept { return handle_ != nullptr; }

    // Copies the text. Indexes begin at 1.
    void bindText(int index, std::string_view text);
    void bindInteger(int index, std::int64_t value);

    // Copies the bytes.
    void bindBlob(int index, std::span<const std::uint8_t> bytes);

    // For functions that take a pointer of that type, a constant text. Neither is copied.
    void bindPointer(int index, void* pointer, const char* type);

    // True while there is a row; anything else ends the rows, and `status` tells which.
    bool step();

    // SQLITE_ROW, SQLITE_DONE or the error of the last step, or of the failed preparation; SQLITE_MISUSE
    // before any.
    [[nodiscard]] int status() const noexcept { return status_; }

    // Ready to be bound and stepped again, without its values. Ends the read that a kept statement holds
    // open.
    void reset();

    // The same, but the values stay.
    void rewind();

    [[nodiscard]] std::int64_t integer(int column) const {
        return sqlite3_column_int64(handle_.get(), column);
    }

    // Absent for NULL. Valid until the next step or reset.
    [[nodiscard]] std::optional<std::string_view> text(int column) const;

    // Empty for NULL. Valid until the next step or reset.
    [[nodiscard]] std::span<const std::uint8_t> blob(int column) const;

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* handle) const noexcept { sqlite3_finalize(handle); }
    };

    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
    int status_ = SQLITE_MISUSE;
};

} // namespace corvane::platform
