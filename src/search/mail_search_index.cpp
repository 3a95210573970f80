#include "search/mail_search_index.h"

#include <utility>

#include "records/texts/preview_placeholders.h"
#include "search/search_database.h"
#include "search/search_index_files.h"
#include "text/charsets/encoding.h"
#include "text/trim.h"

namespace corvane {

namespace {

using platform::SqliteStatement;

constexpr std::string_view recordMapBuiltKey = "record_map_built";
constexpr std::string_view extractorVersionKey = "extractor_version";
constexpr std::int64_t extractorVersion = 9;

bool countsAsEmpty(std::string_view body) {
    const std::string_view trimmed = text::trimWhitespaceAndNewlines(body);
    return trimmed.empty() || trimmed == emptyBodyPreviewPlaceholder;
}

} // namespace

MailSearchIndex::BodyLookup::BodyLookup(sqlite3* database)
  : rowIDOfRecord(database, "SELECT fts_rowid FROM record_map WHERE record_id = ?;",
                  SQLITE_PREPARE_PERSISTENT)
  , bodyOfRow(database, "SELECT body FROM email_fts WHERE rowid = ?;", SQLITE_PREPARE_PERSISTENT) {}

MailSearchIndex::MailSearchIndex(platform::SqliteConnection database)
  : database_(std::move(database))
  , hasTrigrams_(search::hasTrigramTable(database_.get()))
  , pairs_(database_.get()) {
    // The first of each is made here, where nobody waits.
    bodyLookup();
    trigramStatements();
    provideRecordMap();
    if (metaInt(extractorVersionKey) != extractorVersion)
        setMeta(extractorVersionKey, std::to_string(extractorVersion));
}

std::unique_ptr<MailSearchIndex> MailSearchIndex::make(platform::SqliteConnection database) {
    std::unique_ptr<MailSearchIndex> index;
    if (database) index.reset(new MailSearchIndex(std::move(database)));
    return index;
}

std::unique_ptr<MailSearchIndex> MailSearchIndex::open(const CorvaneAppSupport& support,
                                                       std::string_view archiveRoot) {
    const auto url = search::databaseURL(support, archiveRoot);
    bool isFileDamaged = false;
    return url ? make(search::openSearchDatabase(url->path().str(), isFileDamaged)) : nullptr;
}

std::unique_ptr<MailSearchIndex> MailSearchIndex::openOrReset(const CorvaneAppSupport& support,
                                                              std::string_view archiveRoot) {
    const auto url = search::databaseURL(support, archiveRoot);
    if (!url) return nullptr;
    bool isFileDamaged = false;
    auto index = make(search::openSearchDatabase(url->path().str(), isFileDamaged));
    return isFileDamaged || (index && index->isDamaged()) ? openReset(support, archiveRoot)
                                                          : std::move(index);
}

std::unique_ptr<MailSearchIndex> MailSearchIndex::openReset(const CorvaneAppSupport& support,
                                                            std::string_view archiveRoot) {
    const auto url = search::databaseURL(support, archiveRoot);
    return url ? make(search::openAfterReset(url->path().str())) : nullptr;
}

// Only a map that was filled counts as built: another try costs less than bodies that can't be found.
void MailSearchIndex::provideRecordMap() {
    if (metaInt(recordMapBuiltKey) == 1) return;
    const int status =
        search::execute(database_.get(), "INSERT OR REPLACE INTO record_map(record_id, fts_rowid) SELECT "
                                         "record_id, rowid FROM email_fts;");
    recordStatus(status);
    if (status == SQLITE_OK) setMeta(recordMapBuiltKey, "1");
}

std::size_t MailSearchIndex::bulkInsert(std::span<const SearchIndexRow> rows) {
    if (rows.empty()) return 0;
    const text::MutexLock lock(writing_);
    if (!beginWriting()) return 0;
    const auto inserted = insertRows(rows);
    return endWriting(inserted.has_value()) ? *inserted : 0;
}

// The lock comes first: preparing may read from the table, and a transaction that has read before another one
// wrote can't write any more. One that couldn't be ended goes on.
bool MailSearchIndex::beginWriting() {
    if (sqlite3_get_autocommit(database_.get()) == 0) return true;
    const int status = search::execute(database_.get(), "BEGIN IMMEDIATE;");
    recordStatus(status);
    return status == SQLITE_OK;
}

// An error of the disk may have undone all of it already.
bool MailSearchIndex::endWriting(bool isToBeKept) {
    if (sqlite3_get_autocommit(database_.get()) != 0) return false;
    const int status = search::execute(database_.get(), isToBeKept ? "COMMIT;" : "ROLLBACK;");
    recordStatus(status);
    return isToBeKept && status == SQLITE_OK;
}

std::optional<std::size_t> MailSearchIndex::insertRows(std::span<const SearchIndexRow> rows) {
    SqliteStatement insert(database_.get(), "INSERT INTO email_fts(record_id,subject,sender,recipients,"
                                            "attachments,body) VALUES(?,?,?,?,?,?);");
    SqliteStatement map(database_.get(),
                        "INSERT OR REPLACE INTO record_map(record_id, fts_rowid) VALUES(?,?);");
    for (const SqliteStatement* statement : {&insert, &map}) {
        recordStatus(statement->status());
        if (!*statement) return std::nullopt;
    }
    std::size_t inserted = 0;
    for (const SearchIndexRow& row : rows) {
        const bool isInserted = insertRow(row, insert);
        if (sqlite3_get_autocommit(database_.get()) != 0) return std::nullopt;
        // A row that the map doesn't know could be found, but its body couldn't.
        if (isInserted && !mapRow(row.id, map)) return std::nullopt;
        inserted += isInserted ? 1 : 0;
        if ((insert.status() & 0xFF) == SQLITE_BUSY) break; // 5 seconds a row otherwise
    }
    return inserted;
}

bool MailSearchIndex::insertRow(const SearchIndexRow& row, SqliteStatement& insert) const {
    int column = 0;
    for (const std::string_view text :
         {row.id.view(), row.subject.view(), row.sender.view(), row.recipients.view(),
          std::string_view(row.attachments), std::string_view(row.body)})
        insert.bindText(++column, text);
    return runOnce(insert);
}

// To the row that was inserted last.
bool MailSearchIndex::mapRow(std::string_view id, SqliteStatement& map) const {
    map.bindText(1, id);
    map.bindInteger(2, sqlite3_last_insert_rowid(database_.get()));
    return runOnce(map);
}

bool MailSearchIndex::runOnce(SqliteStatement& statement) const {
    statement.step();
    recordStatus(statement.status());
    statement.reset();
    return statement.status() == SQLITE_DONE;
}

std::optional<SharedTextSet> MailSearchIndex::searchIfReadable(std::string_view query) const {
    const std::string_view text = text::trimWhitespaceAndNewlines(query);
    if (text.empty()) return SharedTextSet();
    if (hasTrigrams_) {
        if (auto ids = searchWithoutScan(text)) return ids;
        if (auto ids = search::idsByScan(database_.get(), text, search::ScannedTable::content)) return ids;
    }
    return search::idsByScan(database_.get(), text);
}

std::optional<SharedTextSet> MailSearchIndex::searchWithoutScan(std::string_view query) const {
    if (!hasTrigrams_) return std::nullopt;
    const std::string_view text = text::trimWhitespaceAndNewlines(query);
    if (search::isPair(text)) {
        const text::MutexLock lock(searchingPairs_);
        return pairs_.ids(text);
    }
    return trigramStatements()->ids(text);
}

search::RecordTest MailSearchIndex::recordTest(std::string_view text) const {
    return {database_.get(), text};
}

text::IdlePool<search::TrigramStatements>::Lease MailSearchIndex::trigramStatements() const {
    return trigrams_.take([this] {
        return std::make_unique<search::TrigramStatements>(database_.get(), SQLITE_PREPARE_PERSISTENT);
    });
}

text::IdlePool<MailSearchIndex::BodyLookup>::Lease MailSearchIndex::bodyLookup() const {
    return bodyLookups_.take([this] { return std::make_unique<BodyLookup>(database_.get()); });
}

std::optional<std::string> MailSearchIndex::body(std::string_view id) const {
    const auto lookup = bodyLookup();
    const auto rowID = rowIDOf(id, *lookup);
    if (!rowID) return std::nullopt;
    SqliteStatement& bodyOfRow = lookup->bodyOfRow;
    bodyOfRow.bindInteger(1, *rowID);
    std::optional<std::string> body;
    if (bodyOfRow.step()) {
        const auto text = bodyOfRow.text(0);
        if (text && !countsAsEmpty(*text)) body = std::string(*text);
    }
    recordStatus(bodyOfRow.status());
    bodyOfRow.reset();
    return body;
}

std::optional<std::int64_t> MailSearchIndex::ftsRowID(std::string_view recordID) const {
    return rowIDOf(recordID, *bodyLookup());
}

std::optional<std::int64_t> MailSearchIndex::rowIDOf(std::string_view recordID, BodyLookup& lookup) const {
    SqliteStatement& rowIDOfRecord = lookup.rowIDOfRecord;
    rowIDOfRecord.bindText(1, recordID);
    std::optional<std::int64_t> rowID;
    if (rowIDOfRecord.step()) rowID = rowIDOfRecord.integer(0);
    recordStatus(rowIDOfRecord.status());
    rowIDOfRecord.reset();
    return rowID;
}

void MailSearchIndex::remove(std::string_view id) {
    const text::MutexLock lock(writing_);
    if (beginWriting()) endWriting(removeRow(id));
}

bool MailSearchIndex::removeRow(std::string_view id) {
    for (const char* sql :
         {"DELETE FROM email_fts WHERE rowid = (SELECT fts_rowid FROM record_map WHERE record_id = ?);",
          "DELETE FROM record_map WHERE record_id = ?;"}) {
        SqliteStatement removal(database_.get(), sql);
        removal.bindText(1, id);
        if (!runOnce(removal)) return false;
    }
    return true;
}

void MailSearchIndex::clear() {
    const text::MutexLock lock(writing_);
    const int status = search::makeTablesAnew(database_.get());
    recordStatus(status);
    if (status == SQLITE_OK) hasTrigrams_ = true;
}

std::optional<SharedTextSet> MailSearchIndex::indexedIDs() const {
    return idsBy("SELECT record_id FROM email_fts;");
}

bool MailSearchIndex::lacksMostOf(std::size_t records) const {
    // Never less than the number of rows.
    SqliteStatement query(database_.get(), "SELECT max(rowid) FROM record_map;");
    const bool hasAnswer = query.step();
    recordStatus(query.status());
    return hasAnswer && std::cmp_less(query.integer(0), (records + 1) / 2);
}

std::optional<SharedTextSet> MailSearchIndex::mappedIDs() const {
    return idsBy("SELECT record_id FROM record_map;");
}

std::optional<SharedTextSet> MailSearchIndex::idsBy(const char* sql) const {
    SqliteStatement query(database_.get(), sql);
    SharedTextSet ids;
    while (query.step()) {
        if (const auto id = query.text(0)) ids.insert(SharedText(*id));
    }
    recordStatus(query.status());
    if (query.status() != SQLITE_DONE) return std::nullopt;
    return ids;
}

std::optional<IndexedBodyStates> MailSearchIndex::bodyStates() const {
    SqliteStatement query(database_.get(), "SELECT record_id, body FROM email_fts;");
    IndexedBodyStates states;
    while (query.step()) {
        const auto id = query.text(0);
        if (!id) continue;
        const auto body = query.text(1);
        (body && !countsAsEmpty(*body) ? states.withBody : states.withoutBody).insert(SharedText(*id));
    }
    recordStatus(query.status());
    if (query.status() != SQLITE_DONE) return std::nullopt;
    return states;
}

std::int64_t MailSearchIndex::metaInt(std::string_view key) const {
    SqliteStatement query(database_.get(), "SELECT value FROM meta WHERE key = ?;");
    query.bindText(1, key);
    if (!query.step()) return noMetaValue;
    return text::parseInteger(query.text(0).value_or("")).value_or(noMetaValue);
}

void MailSearchIndex::setMeta(std::string_view key, std::string_view value) {
    const text::MutexLock lock(writing_);
    SqliteStatement statement(database_.get(), "INSERT OR REPLACE INTO meta(key,value) VALUES(?,?);");
    statement.bindText(1, key);
    statement.bindText(2, value);
    statement.step();
}

void MailSearchIndex::pruneOrphans(const CorvaneAppSupport& support, std::span<const std::string> liveRoots) {
    search::pruneOrphans(support, liveRoots);
}

void MailSearchIndex::recordStatus(int status) const {
    if (search::meansDamage(status)) isDamaged_ = true;
}

} // namespace corvane
