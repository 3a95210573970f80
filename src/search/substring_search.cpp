#include "search/substring_search.h"

#include <algorithm>

#include "text/charset.h"

namespace corvane::search {

namespace {

using platform::SqliteStatement;

constexpr std::size_t charactersOfTrigram = 3;

// A text up to this length is asked for as one phrase; each trigram costs a pass over its rows.
constexpr std::size_t charactersOfWholePhrase = 32;

// Of a longer text, so many pieces of so many characters, spread over it.
constexpr std::size_t pieceCount = 4;
constexpr std::size_t charactersOfPiece = 8;

// Looking up a row costs about as much as reading two in order, and naming it something too.
constexpr std::int64_t rowsOfTableForOneLookup = 8;
constexpr std::int64_t fewestLookups = 64;

constexpr const char* scanStatement = R"(SELECT record_id FROM email_fts WHERE
  subject LIKE ?1 ESCAPE '\' OR sender LIKE ?1 ESCAPE '\' OR
  recipients LIKE ?1 ESCAPE '\' OR attachments LIKE ?1 ESCAPE '\' OR
  body LIKE ?1 ESCAPE '\';
)";

constexpr const char* testStatement = R"(SELECT record_id FROM email_fts WHERE rowid = ?2 AND (
  subject LIKE ?1 ESCAPE '\' OR sender LIKE ?1 ESCAPE '\' OR
  recipients LIKE ?1 ESCAPE '\' OR attachments LIKE ?1 ESCAPE '\' OR
  body LIKE ?1 ESCAPE '\');
)";

constexpr const char* candidateStatement = "SELECT rowid FROM email_fts WHERE email_fts MATCH ?1 LIMIT ?2;";

constexpr const char* lastRowStatement = "SELECT rowid FROM email_fts ORDER BY rowid DESC LIMIT 1;";

bool endedWell(const SqliteStatement& statement) {
    return statement.status() == SQLITE_DONE;
}

// Where each character begins, and the end.
std::vector<std::size_t> characterOffsets(std::string_view text) {
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) offsets.push_back(i);
    }
    offsets.push_back(text.size());
    return offsets;
}

std::string quotedPhrase(std::string_view text) {
    std::string phrase = "\"";
    for (const char character : text) phrase.append(character == '"' ? 2 : 1, character);
    return phrase += '"';
}

// How many rows may be looked up one by one before reading all is quicker; nothing after an error.
std::optional<std::int64_t> lookupLimit(sqlite3* database) {
    SqliteStatement last(database, lastRowStatement);
    const std::int64_t rows = last.step() ? last.integer(0) : 0;
    if (last.status() != SQLITE_ROW && !endedWell(last)) return std::nullopt;
    return std::max(fewestLookups, rows / rowsOfTableForOneLookup);
}

void takeID(const SqliteStatement& row, SharedTextSet& ids) {
    if (const auto id = row.text(0); id && !ids.contains(*id)) ids.insert(SharedText(*id));
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

std::optional<SharedTextSet> idsByScan(sqlite3* database, std::string_view text) {
    SqliteStatement scan(database, scanStatement);
    if (!scan) return std::nullopt;
    scan.bindText(1, likePattern(text));
    SharedTextSet ids;
    while (scan.step()) takeID(scan, ids);
    if (!endedWell(scan)) return std::nullopt;
    return ids;
}

std::optional<SharedTextSet> idsByTrigrams(sqlite3* database, std::string_view text) {
    const auto query = trigramQuery(text);
    const auto limit = query ? lookupLimit(database) : std::nullopt;
    if (!limit) return std::nullopt;
    SqliteStatement candidates(database, candidateStatement);
    SqliteStatement test(database, testStatement);
    if (!candidates || !test) return std::nullopt;
    candidates.bindText(1, *query);
    candidates.bindInteger(2, *limit);
    std::vector<std::int64_t> rows;
    while (candidates.step()) rows.push_back(candidates.integer(0));
    if (!endedWell(candidates) || std::ssize(rows) == *limit) return std::nullopt;
    const std::string pattern = likePattern(text);
    SharedTextSet ids;
    for (const std::int64_t row : rows) {
        test.bindText(1, pattern);
        test.bindInteger(2, row);
        if (test.step()) takeID(test, ids);
        const bool isSound = test.status() == SQLITE_ROW || endedWell(test);
        test.reset();
        if (!isSound) return std::nullopt;
    }
    return ids;
}

} // namespace corvane::search
