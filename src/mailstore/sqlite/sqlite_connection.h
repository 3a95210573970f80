// A read-only connection to a foreign database and a statement on it. Any thread, one at a time.
#pragma once

#include <chrono>
#include <memory>
#include <stdexcept>
#include <stop_token>
#include <string>

#include "platform/sqlite.h"

namespace corvane::mailstore {

class SqliteError : public std::runtime_error {
  public:
    enum class Step { open, prepare, read };

    // `code` is that of SQLite.
    SqliteError(Step step, int code, const std::string& message)
      : std::runtime_error(message)
      , step_(step)
      , code_(code) {}

    [[nodiscard]] Step step() const noexcept { return step_; }

    // A lock, a time limit or a stop kept the answer back, or the read broke off: another time it may come.
    [[nodiscard]] bool isOfTheMoment() const noexcept {
        return step_ == Step::read || code_ == SQLITE_BUSY || code_ == SQLITE_LOCKED ||
               code_ == SQLITE_INTERRUPT;
    }

  private:
    Step step_;
    int code_;
};

// How long a read waits for a lock. The first reader of a write-ahead log that nobody has open locks the
// others out for a moment, and so does the last one as it leaves: without a wait our own readers fail each
// other. It is short, because a writer that holds the index for long is an error that the user should see
// soon.
inline constexpr std::chrono::milliseconds busyPatience{300};

// When a connection gives up.
struct ReadLimit {
    std::chrono::steady_clock::time_point deadline;
    std::stop_token stop;
};

class ReadOnlyConnection {
  public:
    enum class NameKind { path, uri };

    // Opens without changing the file; what its schema says isn't trusted. From the deadline or a requested
    // stop on, statements fail with SQLITE_INTERRUPT. Throws SqliteError.
    ReadOnlyConnection(const std::string& name, NameKind kind, ReadLimit limit);

    [[nodiscard]] sqlite3* handle() const noexcept { return handle_.get(); }

  private:
    std::unique_ptr<const ReadLimit> limit_; // SQLite keeps a pointer to it
    platform::SqliteConnection handle_;
};

class Statement : public platform::SqliteStatement {
  public:
    // Throws SqliteError.
    Statement(const ReadOnlyConnection& connection, const char* sql);
};

} // namespace corvane::mailstore
