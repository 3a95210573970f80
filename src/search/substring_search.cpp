#include "search/substring_search.h"

#include <algorithm>

#include "text/charsets/charset.h"
#include "text/charsets/utf8_step.h"

namespace corvane::search {

namespace {

using platform::SqliteStatement;

constexpr std::size_t charactersOfTrigram = 3;

// A text up to this length is asked for as one phrase; each trigram costs a pass over its rows.
constexpr std::size_t charactersOfWholePhrase = 32;

// Of a longer text, so many pieces of so many characters, spread over it.
constexpr std::size_t pieceCount = 4;
constexpr std::size_t charactersOfPiece = 8;

// Looking up a row and asking LIKE costs about as much as reading two in order. Naming the rows costs
// something, too, and is for nothing where they turn out to be too many.
constexpr std::int64_t rowsOfTableForOneTest = 16;
constexpr std::int64_t rowsOfTableForOneLookup = 5; // where LIKE isn't asked
constexpr std::int64_t fewestLookups = 64;

constexpr std::size_t ideographBytes = 3; // in UTF-8, where they compare as bytes do

// To which a character folds that isn't ASCII.
constexpr std::string_view lettersWithOthers = "kKsS";

// Hashing tens of thousands of ids again and again takes as long as finding them does.
constexpr std::size_t usualIDsOfScan = 32768;

constexpr const char* scanStatement = R"(SELECT record_id FROM email_fts WHERE
  subject LIKE ?1 ESCAPE '\' OR sender LIKE ?1 ESCAPE '\' OR
  recipients LIKE ?1 ESCAPE '\' OR attachments LIKE ?1 ESCAPE '\' OR
  body LIKE ?1 ESCAPE '\';
)";

// The same rows, past the module of the full-text table, which copies each column that it hands out.
constexpr const char* contentScanStatement = R"(SELECT c0 FROM email_fts_content WHERE
  c1 LIKE ?1 ESCAPE '\' OR c2 LIKE ?1 ESCAPE '\' OR
  c3 LIKE ?1 ESCAPE '\' OR c4 LIKE ?1 ESCAPE '\' OR
  c5 LIKE ?1 ESCAPE '\';
)";

constexpr const char* idStatement = "SELECT c0 FROM email_fts_content WHERE id = ?1;";

constexpr const char* testStatement = R"(SELECT c0 FROM email_fts_content WHERE id = ?1 AND (
  c1 LIKE ?2 ESCAPE '\' OR c2 LIKE ?2 ESCAPE '\' OR
  c3 LIKE ?2 ESCAPE '\' OR c4 LIKE ?2 ESCAPE '\' OR
  c5 LIKE ?2 ESCAPE '\');
)";

constexpr const char* recordTestStatement = R"(SELECT 1 FROM email_fts WHERE
  rowid = (SELECT fts_rowid FROM record_map WHERE record_id = ?1) AND (
  subject LIKE ?2 ESCAPE '\' OR sender LIKE ?2 ESCAPE '\' OR
  recipients LIKE ?2 ESCAPE '\' OR attachments LIKE ?2 ESCAPE '\' OR
  body LIKE ?2 ESCAPE '\');
)";

// Only counts, which read no row.
constexpr const char* rowCountStatement =
    "SELECT (SELECT count(*) FROM record_map) = (SELECT count(*) FROM email_fts_docsize);";

bool endedWell(const SqliteStatement& statement) {
    return statement.status() == SQLITE_DONE;
}

// Where each character begins, and the end.
std::vector<std::size_t> characterOffsets(std::string_view text) {
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!text::continuesCharacter(text[i])) offsets.push_back(i);
    }
    offsets.push_back(text.size());
    return offsets;
}

std::string quotedPhrase(std::string_view text) {
    std::string phrase = "\"";
    for (const char character : text) phrase.append(character == '"' ? 2 : 1, character);
    return phrase += '"';
}

void appendID(const SqliteStatement& row, SharedTextSet& ids) {
    if (const auto id = row.text(0)) ids.emplace(*id);
}

// The id that the statement gives for each row, its first value, if any. False after an error.
bool addAnswers(SqliteStatement& statement, const std::vector<std::int64_t>& rows, SharedTextSet& ids) {
    if (!statement) return false;
    bool isSound = true;
    for (const std::int64_t row : rows) {
        statement.bindInteger(1, row);
        if (statement.step()) appendID(statement, ids);
        isSound = statement.status() == SQLITE_ROW || endedWell(statement);
        statement.rewind();
        if (!isSound) break;
    }
    return isSound;
}

// Whether the index names no row too many. Of other characters only the Kelvin sign and the long s fold to an
// ASCII one, to "k" and "s".
bool isFoundByIndexAlone(std::string_view text) {
    std::size_t characters = 0;
    for (std::size_t i = 0; i < text.size(); ++characters) {
        const bool isAscii = static_cast<unsigned char>(text[i]) < 0x80;
        const std::string_view character = text.substr(i, isAscii ? 1 : ideographBytes);
        const bool isSole =
            isAscii ? lettersWithOthers.find(text[i]) == std::string_view::npos : areIdeographs(character);
        if (!isSole) return false;
        i += character.size();
    }
    return characters <= charactersOfWholePhrase;
}

} // namespace

std::string likePattern(std::string_view text) {
    std::string pattern = "%";
    for (const char character : text) {
        if (character == '\\' || character == '%' || character == '_') pattern += '\\';
        pattern += character;
    }
    return pattern += '%';
}

std::optional<std::string> trigramQuery(std::string_view text) {
    if (text.find('\0') != std::string_view::npos || !text::isValidUtf8(text)) return std::nullopt;
    const std::vector<std::size_t> offsets = characterOffsets(text);
    const std::size_t count = offsets.size() - 1;
    if (count < charactersOfTrigram) return std::nullopt;
    if (count <= charactersOfWholePhrase) return quotedPhrase(text);
    std::string query;
    for (std::size_t piece = 0; piece < pieceCount; ++piece) {
        const std::size_t first = (count - charactersOfPiece) * piece / (pieceCount - 1);
        const std::size_t begin = offsets[first];
        if (piece > 0) query += " AND ";
        query += quotedPhrase(text.substr(begin, offsets[first + charactersOfPiece] - begin));
    }
    return query;
}

bool areIdeographs(std::string_view text) {
    bool are = true;
    for (std::size_t i = 0; are && i < text.size(); i += ideographBytes) {
        const std::string_view character = text.substr(i, ideographBytes);
        are = character >= "\xE3\x90\x80" && character <= "\xE9\xBF\xBF";
    }
    return are;
}

std::optional<SharedTextSet> idsByScan(sqlite3* database, std::string_view text, ScannedTable table) {
    SqliteStatement scan(database, table == ScannedTable::content ? contentScanStatement : scanStatement);
    if (!scan) return std::nullopt;
    scan.bindText(1, likePattern(text));
    SharedTextSet ids;
    ids.reserve(usualIDsOfScan);
    while (scan.step()) appendID(scan, ids);
    if (!endedWell(scan)) return std::nullopt;
    return ids;
}

std::int64_t highestRowID(sqlite3* database) {
    SqliteStatement last(database, "SELECT rowid FROM email_fts ORDER BY rowid DESC LIMIT 1;");
    return last.step() ? last.integer(0) : 0;
}

RecordTest::RecordTest(sqlite3* database, std::string_view text)
  : test_(database, recordTestStatement) {
    SqliteStatement count(database, rowCountStatement);
    hasOneRowEach_ = test_ && count.step() && count.integer(0) == 1;
    test_.bindText(2, likePattern(text));
}

std::optional<bool> RecordTest::holds(std::string_view recordID) {
    test_.bindText(1, recordID);
    const bool holds = test_.step();
    const bool isSound = holds || endedWell(test_);
    test_.rewind();
    return isSound ? std::optional(holds) : std::nullopt;
}

RowLookups::RowLookups(sqlite3* database, unsigned flags)
  : id_(database, idStatement, flags)
  , test_(database, testStatement, flags) {}

std::optional<SharedTextSet> RowLookups::idsHolding(std::string_view text,
                                                    const std::vector<std::int64_t>& rows) {
    SharedTextSet ids;
    test_.bindText(2, likePattern(text));
    const bool isSound = addAnswers(test_, rows, ids);
    test_.reset();
    return isSound ? std::optional(std::move(ids)) : std::nullopt;
}

bool RowLookups::addIDs(const std::vector<std::int64_t>& rows, SharedTextSet& ids) {
    const bool isSound = addAnswers(id_, rows, ids);
    id_.reset();
    return isSound;
}

TrigramStatements::TrigramStatements(sqlite3* database, unsigned flags)
  : database_(database)
  , candidates_(database, "SELECT rowid FROM email_fts WHERE email_fts MATCH ?1;", flags)
  , lookups_(database, flags) {}

std::optional<SharedTextSet> TrigramStatements::ids(std::string_view text) {
    const auto query = trigramQuery(text);
    if (!query || !candidates_) return std::nullopt;
    const Snapshot snapshot(database_);
    if (!snapshot) return std::nullopt;
    const bool isCertain = isFoundByIndexAlone(text);
    candidates_.bindText(1, *query);
    const auto rows = candidateRows(isCertain ? rowsOfTableForOneLookup : rowsOfTableForOneTest);
    candidates_.reset();
    if (!rows) return std::nullopt;
    if (!isCertain) return lookups_.idsHolding(text, *rows);
    SharedTextSet ids;
    return lookups_.addIDs(*rows, ids) ? std::optional(std::move(ids)) : std::nullopt;
}

std::optional<std::vector<std::int64_t>> TrigramStatements::candidateRows(std::int64_t rowsOfTableForOne) {
    const std::int64_t limit = std::max(fewestLookups, highestRowID(database_) / rowsOfTableForOne);
    std::vector<std::int64_t> rows;
    while (candidates_.step()) {
        rows.push_back(candidates_.integer(0));
        if (std::ssize(rows) > limit) return std::nullopt;
    }
    if (!endedWell(candidates_)) return std::nullopt;
    return rows;
}

} // namespace corvane::search
