#include "records/stores/proof_store.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace corvane {

namespace {

using platform::Sha256Digest;
using platform::SqliteStatement;

constexpr int busyMilliseconds = 5000;

// Far above a path with its hashes.
constexpr int maximumRowBytes = 1 << 20;

// Counted up with every change of the tables; a file with another number is made anew.
constexpr const char* versionPragma = "PRAGMA user_version;";
constexpr std::int64_t currentVersion = 3;        // 1 had other body hashes
constexpr std::int64_t versionWithoutChanged = 2; // the last one whose rows don't say when a file was changed

constexpr const char* schema = R"(BEGIN IMMEDIATE;
PRAGMA user_version = 3;
CREATE TABLE IF NOT EXISTS copy_reading(
    path TEXT PRIMARY KEY, size INTEGER NOT NULL, modified INTEGER NOT NULL, outcome INTEGER NOT NULL,
    hash BLOB NOT NULL, body_hash BLOB, read_at INTEGER NOT NULL,
    changed INTEGER NOT NULL DEFAULT -1) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS archived_reading(
    root TEXT NOT NULL, path TEXT NOT NULL, size INTEGER NOT NULL, modified INTEGER NOT NULL,
    outcome INTEGER NOT NULL, hash BLOB NOT NULL, body_hash BLOB, read_at INTEGER NOT NULL,
    changed INTEGER NOT NULL DEFAULT -1,
    PRIMARY KEY(root, path)) WITHOUT ROWID;
COMMIT;
)";

// What was read before stays for archives that can't be read now; any file that is there is read again.
constexpr const char* addChanged = R"(ALTER TABLE copy_reading ADD COLUMN changed INTEGER NOT NULL DEFAULT -1;
ALTER TABLE archived_reading ADD COLUMN changed INTEGER NOT NULL DEFAULT -1;
PRAGMA user_version = 3;
)";

// Both in the order in which the rows lie.
constexpr const char* selectCopies =
    "SELECT path, size, modified, outcome, hash, body_hash, read_at, changed FROM copy_reading "
    "ORDER BY path;";
constexpr const char* selectArchived =
    "SELECT path, size, modified, outcome, hash, body_hash, read_at, changed, root FROM archived_reading "
    "ORDER BY root, path;";
// As ReadingTable::set.
constexpr const char* insertCopy = R"(INSERT INTO copy_reading VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)
ON CONFLICT DO UPDATE SET size = ?2, modified = ?3, outcome = ?4, hash = ?5, read_at = ?7, changed = ?8,
    body_hash = CASE WHEN ?6 IS NULL AND hash = ?5 THEN body_hash ELSE ?6 END;)";
constexpr const char* insertArchived =
    R"(INSERT INTO archived_reading VALUES(?9, ?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)
ON CONFLICT DO UPDATE SET size = ?2, modified = ?3, outcome = ?4, hash = ?5, read_at = ?7, changed = ?8,
    body_hash = CASE WHEN ?6 IS NULL AND hash = ?5 THEN body_hash ELSE ?6 END;)";

constexpr const char* deleteCopy = "DELETE FROM copy_reading WHERE path = ?1;";
constexpr const char* deleteArchived = "DELETE FROM archived_reading WHERE path = ?1 AND root = ?2;";

int execute(sqlite3* database, const char* sql) {
    return sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
}

// All statements here are constants: one that SQLite finds wrong tells of other tables.
bool meansDamage(int status) {
    const int primary = status & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_ERROR;
}

// The errno that says the same to a user.
int errorOf(int status) {
    switch (status & 0xFF) {
    case SQLITE_FULL:
        return ENOSPC;
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
        return EACCES;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return EBUSY;
    default:
        return EIO;
    }
}

platform::SqliteConnection connect(const std::string& path) {
    sqlite3* handle = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;
    const int result = sqlite3_open_v2(path.c_str(), &handle, flags, nullptr);
    platform::SqliteConnection database(handle);
    if (result != SQLITE_OK) return nullptr;
    sqlite3_busy_timeout(handle, busyMilliseconds);
    platform::distrustSchema(handle, maximumRowBytes);
    return database;
}

std::optional<Sha256Digest> digestOf(std::span<const std::uint8_t> bytes) {
    Sha256Digest digest{};
    if (bytes.size() != digest.size()) return std::nullopt;
    std::ranges::copy(bytes, digest.begin());
    return digest;
}

// Absent for a row that no version of ours has written.
std::optional<FileReading> readingIn(const SqliteStatement& row) {
    constexpr auto last = static_cast<std::int64_t>(FileReading::Outcome::gone);
    const std::int64_t outcome = row.integer(3);
    const auto hash = digestOf(row.blob(4));
    if (!hash || outcome < 0 || outcome > last) return std::nullopt;
    return FileReading{.stamp = {row.integer(1), row.integer(2), row.integer(7)},
                       .outcome = static_cast<FileReading::Outcome>(outcome),
                       .hash = *hash,
                       .bodyHash = digestOf(row.blob(5)),
                       .readAt = Date(std::chrono::seconds(row.integer(6)))};
}

void bindReading(SqliteStatement& statement, std::string_view path, const FileReading& reading) {
    statement.bindText(1, path);
    statement.bindInteger(2, reading.stamp.sizeBytes);
    statement.bindInteger(3, reading.stamp.modifiedNanoseconds);
    statement.bindInteger(4, static_cast<std::int64_t>(reading.outcome));
    statement.bindBlob(5, reading.hash);
    if (reading.bodyHash) statement.bindBlob(6, *reading.bodyHash);
    statement.bindInteger(7, reading.readAt.time_since_epoch().count());
    statement.bindInteger(8, reading.stamp.changedNanoseconds);
}

// SQLITE_OK for a statement without rows that went through; it is ready for the next values then.
int stepOnce(SqliteStatement& statement) {
    statement.step();
    const int status = statement.status();
    statement.reset();
    return status == SQLITE_DONE ? SQLITE_OK : status;
}

// Says of rows that are read whether each lies behind the one before. One that doesn't isn't found by its
// key: what is saved under it would lie beside it.
class RowOrder {
  public:
    bool isKeptBy(std::string_view root, std::string_view path) {
        if (!isFirst_ && std::tie(root, path) <= std::tie(root_, path_)) return false;
        isFirst_ = false;
        root_ = root;
        path_ = path;
        return true;
    }

  private:
    bool isFirst_ = true;
    std::string root_;
    std::string path_;
};

// The status with which the rows ended.
int readCopies(sqlite3* database, ReadingTable& table) {
    SqliteStatement rows(database, selectCopies);
    RowOrder order;
    while (rows.step()) {
        const std::string_view path = rows.text(0).value_or("");
        if (!order.isKeptBy("", path)) return SQLITE_CORRUPT;
        const auto reading = readingIn(rows);
        if (reading) table.set(path, *reading);
    }
    return rows.status();
}

int readArchived(sqlite3* database, ProofFacts& facts) {
    SqliteStatement rows(database, selectArchived);
    RowOrder order;
    ReadingTable* table = nullptr;
    std::string root;
    while (rows.step()) {
        const std::string_view rowRoot = rows.text(8).value_or("");
        const std::string_view path = rows.text(0).value_or("");
        if (!order.isKeptBy(rowRoot, path)) return SQLITE_CORRUPT;
        const auto reading = readingIn(rows);
        if (!reading) continue;
        if (table == nullptr || root != rowRoot) {
            root = rowRoot;
            table = &facts.archived[root];
        }
        table->set(path, *reading);
    }
    return rows.status();
}

int insertAll(sqlite3* database, const ReadingBatch& batch) {
    SqliteStatement copies(database, insertCopy);
    SqliteStatement files(database, insertArchived);
    if (!copies || !files) return !copies ? copies.status() : files.status();
    int status = SQLITE_OK;
    for (const CopyReading& copy : batch.copies) {
        bindReading(copies, copy.path, copy.reading);
        if ((status = stepOnce(copies)) != SQLITE_OK) return status;
    }
    for (const auto& [root, readings] : batch.archived) {
        for (const ArchivedFileReading& file : readings) {
            bindReading(files, file.relativePath, file.reading);
            files.bindText(9, root);
            if ((status = stepOnce(files)) != SQLITE_OK) return status;
        }
    }
    return status;
}

int deleteAll(sqlite3* database, const ReadingPaths& paths) {
    SqliteStatement copies(database, deleteCopy);
    SqliteStatement files(database, deleteArchived);
    if (!copies || !files) return !copies ? copies.status() : files.status();
    int status = SQLITE_OK;
    for (const std::string& path : paths.copies) {
        copies.bindText(1, path);
        if ((status = stepOnce(copies)) != SQLITE_OK) return status;
    }
    for (const auto& [root, removed] : paths.archived) {
        for (const std::string& path : removed) {
            files.bindText(1, path);
            files.bindText(2, root);
            if ((status = stepOnce(files)) != SQLITE_OK) return status;
        }
    }
    return status;
}

// All of `change` or nothing of it; SQLITE_OK or the error.
template <class Change>
int changeAtOnce(sqlite3* database, const Change& change) {
    int status = execute(database, "BEGIN IMMEDIATE;");
    if (status != SQLITE_OK) return status;
    status = change();
    if (status == SQLITE_OK) status = execute(database, "COMMIT;");
    if (status != SQLITE_OK) execute(database, "ROLLBACK;");
    return status;
}

// SQLITE_ROW, or the error.
int readVersion(sqlite3* database, std::int64_t& known) {
    SqliteStatement version(database, versionPragma);
    if (!version.step()) return version.status();
    known = version.integer(0);
    return SQLITE_ROW;
}

// Another process may be doing the same.
int addChangedColumn(sqlite3* database) {
    return changeAtOnce(database, [&] {
        std::int64_t known = 0;
        const int status = readVersion(database, known);
        if (status != SQLITE_ROW) return status;
        return known == versionWithoutChanged ? execute(database, addChanged) : SQLITE_OK;
    });
}

// SQLITE_OK, or the error that kept the tables from being there.
int provideTables(sqlite3* database) {
    std::int64_t known = 0;
    const int status = readVersion(database, known);
    if (status != SQLITE_ROW) return status;
    if (known == currentVersion) return SQLITE_OK;
    if (known == versionWithoutChanged) return addChangedColumn(database);
    // Another process may be making them as well.
    return known == 0 ? execute(database, schema) : SQLITE_NOTADB;
}

} // namespace

ProofStore::ProofStore(CorvaneAppSupport support)
  : support_(std::move(support))
  , path_(support_.filePath("proof-readings.sqlite")) {}

std::shared_ptr<ProofFacts> ProofStore::load() {
    auto facts = read();
    return facts ? facts : std::make_shared<ProofFacts>();
}

FileStamp ProofStore::stamp() const {
    struct stat status{};
    return support_.files().stat(path_, status) == 0 ? stampOf(status) : unknownStamp;
}

// Null where there is a file that can't be read. What was read before some damage isn't to be trusted either.
std::shared_ptr<ProofFacts> ProofStore::read() {
    auto facts = std::make_shared<ProofFacts>();
    struct stat status{};
    if (support_.files().stat(path_, status) != 0 && errno == ENOENT) return facts;
    if (open() != SQLITE_OK) return nullptr;
    int ended = readCopies(database_.get(), facts->copies);
    if (ended == SQLITE_DONE) ended = readArchived(database_.get(), *facts);
    if (ended == SQLITE_DONE) return facts;
    if (meansDamage(ended)) removeFile();
    return nullptr;
}

bool ProofStore::save(const ReadingBatch& batch) {
    if (batch.isEmpty()) return true;
    int status = SQLITE_OK;
    for (int attempt = 0; attempt < 2 && (status = open()) == SQLITE_OK; ++attempt) {
        status = changeAtOnce(database_.get(), [&] { return insertAll(database_.get(), batch); });
        if (status == SQLITE_OK) return true;
        if (!meansDamage(status)) break;
        removeFile();
    }
    support_.setWriteFailure(errorOf(status));
    takeBack(batch);
    return false;
}

// A file that can't be written can mostly be removed: what is read again costs time, what is believed wrongly
// costs mail.
void ProofStore::takeBack(const ReadingBatch& batch) {
    database_.reset(); // another process may have put a new file in the place of this one
    const auto known = read();
    if ((!known || known->areContradictedBy(batch)) && !removeFile()) support_.setOutdatedReadings();
}

void ProofStore::remove(const ReadingPaths& paths) {
    struct stat status{};
    if (paths.isEmpty() || support_.files().stat(path_, status) != 0 || open() != SQLITE_OK) return;
    const int ended = changeAtOnce(database_.get(), [&] { return deleteAll(database_.get(), paths); });
    if (meansDamage(ended)) removeFile();
}

// SQLITE_OK with `database_` and its tables, or the error without.
int ProofStore::open() {
    int status = SQLITE_OK;
    for (int attempt = 0; attempt < 2 && !database_; ++attempt) {
        if (!makeFile()) return SQLITE_CANTOPEN;
        platform::SqliteConnection database = connect(path_);
        if (!database) return SQLITE_CANTOPEN;
        status = provideTables(database.get());
        if (status == SQLITE_OK) {
            database_ = std::move(database);
        } else if (meansDamage(status)) {
            database.reset();
            removeFile();
        } else {
            return status;
        }
    }
    return status;
}

// Made before SQLite does, with the mode that its journal takes over.
bool ProofStore::makeFile() {
    if (support_.createBaseDirectory()) return false;
    platform::FileLayer& files = support_.files();
    const int descriptor = files.open(path_, O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    if (descriptor < 0) return false;
    files.close(descriptor);
    return true;
}

// Whether it has gone.
bool ProofStore::removeFile() {
    database_.reset();
    platform::FileLayer& files = support_.files();
    const bool hasGone = files.unlink(path_) == 0 || errno == ENOENT;
    for (const char* suffix : {"-journal", "-wal", "-shm"}) files.unlink(path_ + suffix);
    return hasGone;
}

} // namespace corvane
