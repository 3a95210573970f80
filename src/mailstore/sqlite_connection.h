// A read-only connection to a foreign database and a statement on it. Any thread, one at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <sqlite3.h>

namespace corvane::mailstore {

class SqliteError : public std::runtime_error {
  public:
    enum class Step { open, prepare };

    SqliteError(Step step, const std::string& message)
      : std::runtime_error(message)
      , step_(step) {}

    [[nodiscard]] Step step() const noexcept { return step_; }

  private:
    Step step_;
};

class ReadOnlyConnection {
  public:
    enum class NameKind { path, uri };

    // Opens without changing the file; what its schema says isn't trusted. Throws SqliteError.
    ReadOnlyConnection(const std::string& name, NameKind kind);

    [[nodiscard]] sqlite3* handle() const noexcept { return handle_.get(); }

  private:
    struct Close {
        void operator()(sqlite3* handle) const noexcept { sqlite3_close(handle); }
    };

    std::unique_ptr<sqlite3, Close> handle_;
};

class Statement {
  public:
    // Throws SqliteError.
    Statement(const ReadOnlyConnection& connection, const char* sql);

    // True while there is a row; anything else, errors too, ends the rows.
    bool step() { return sqlite3_step(handle_.get()) == SQLITE_ROW; }

    [[nodiscard]] std::int64_t integer(int column) const {
        return sqlite3_column_int64(handle_.get(), column);
    }

    // Nothing for NULL. Valid until the next step.
    [[nodiscard]] std::optional<std::string_view> text(int column) const;

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* handle) const noexcept { sqlite3_finalize(handle); }
    };

    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
};

} // namespace corvane::mailstore
