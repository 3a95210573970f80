// How to name a database to SQLite so that reading it leaves no file beside it.
//
// A reader of a database in WAL mode makes "-shm" and "-wal" files when they aren't there, even when it opens
// it read-only, and can't read at all in a folder that it may not write to. Without a "-wal" file everything
// is in the database itself, and it can be read as immutable. A writer that comes during such a read isn't
// noticed by SQLite: `wasDisturbed` tells, and the read is then to be repeated under the plain path, beside
// the writer's own files.
//
// With a "-wal" file, without "-shm", and in a folder that can't be written to, SQLite has no way at all.
// Nobody can write there either, so a copy of both files in the temporary folder is read instead, made once a
// process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace corvane::mailstore {

class QuietDatabase {
  public:
    // `temporaryFolder` takes the copy where one is needed.
    QuietDatabase(std::string path, const std::string& temporaryFolder);

    // The path, or a URI (https://sqlite.org/uri.html).
    [[nodiscard]] const std::string& name() const { return name_; }

    [[nodiscard]] bool isURI() const { return before_.has_value(); }

    [[nodiscard]] bool wasDisturbed() const;

  private:
    struct State {
        std::int64_t size = 0;
        std::filesystem::file_time_type modified;

        friend bool operator==(const State&, const State&) = default;
    };

    // Nothing when there is a write-ahead log or the file can't be looked at.
    [[nodiscard]] std::optional<State> settledState() const;
    [[nodiscard]] bool isInWalMode() const;
    [[nodiscard]] bool hasUnreachableLog() const;

    std::string path_;
    std::string name_;
    std::optional<State> before_;                    // only of a database that is read as immutable
    std::shared_ptr<const class DatabaseCopy> copy_; // only of one that is read from a copy
};

} // namespace corvane::mailstore
