// A read-only connection to a foreign database and a statement on it. Any thread, one at a time.
#pragma once

#include <chrono>
#include <stdexcept>
#include <string>

#include "platform/sqlite.h"

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

// How long a read waits for a lock. The first reader of a write-ahead log that nobody has open locks the
// others out for a moment, and so does the last one as it leaves: without a wait our own readers fail each
// other. It is short, because a writer that holds the index for long is an error that the user should see
// soon.
inline constexpr std::chrono::milliseconds busyPatience{300};

class ReadOnlyConnection {
  public:
    enum class NameKind { path, uri };

    // Opens without changing the file; what its schema says isn't trusted. Throws SqliteError.
    ReadOnlyConnection(const std::string& name, NameKind kind);

    [[nodiscard]] sqlite3* handle() const noexcept { return handle_.get(); }

  private:
    platform::SqliteConnection handle_;
};

class Statement : public platform::SqliteStatement {
  public:
    // Throws SqliteError.
    Statement(const ReadOnlyConnection& connection, const char* sql);
};

} // namespace corvane::mailstore
