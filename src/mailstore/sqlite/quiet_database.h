// How to name a database to SQLite so that reading it leaves no file beside it.
//
// A reader of a database in WAL mode makes "-shm" and "-wal" files when they aren't there, even when it opens
// it read-only, and can't read at all in a folder that it may not write to. Without a "-wal" file everything
// is in the database itself, and it can be read as immutable. A writer that comes during such a read isn't
// noticed by SQLite: `wasDisturbed` is true then, and the read is to be repeated under the plain path, beside
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

// Whether the database and what SQLite opens beside it are regular files where they are there. The opening
// of a pipe in the place of one would wait for its writer.
bool consistsOfFiles(const std::string& path);

// What is said of a database that doesn't, in the words that SQLite has for a folder.
inline constexpr const char* noDatabaseFile = "unable to open database file";

class QuietDatabase {
  public:
    // Looks at the files and, where needed, makes the copy in `temporaryFolder`. Without one the name is the
    // plain path, so that SQLite's error reaches the user.
    QuietDatabase(std::string path, const std::string& temporaryFolder);

    // The path, or a URI (https://sqlite.org/uri.html).
    [[nodiscard]] const std::string& name() const { return name_; }

    // Whether the database is read as immutable.
    [[nodiscard]] bool isURI() const { return before_.has_value(); }

    // Whether a writer may have changed it since the construction.
    [[nodiscard]] bool wasDisturbed() const;

  private:
    struct State {
        std::int64_t size = 0;
        std::filesystem::file_time_type modified;

        friend bool operator==(const State&, const State&) = default;
    };

    // Nullopt when there is a write-ahead log or the file can't be looked at.
    [[nodiscard]] std::optional<State> settledState() const;
    [[nodiscard]] bool isInWalMode() const;
    [[nodiscard]] bool hasUnreachableLog() const;

    std::string path_;
    std::string name_;
    std::optional<State> before_;                    // only of a database that is read as immutable
    std::shared_ptr<const class DatabaseCopy> copy_; // only of one that is read from a copy
};

} // namespace corvane::mailstore
