#include "search/column_ends.h"

#include <algorithm>

#include "text/charsets/ascii.h"
#include "text/charsets/charset.h"
#include "text/charsets/utf8_step.h"

namespace corvane::search {

namespace {

using platform::SqliteStatement;

constexpr std::uint32_t noPair = 0;  // fewer than two characters
constexpr std::uint32_t anyPair = 1; // ill-formed: what SQLite reads there isn't worth knowing

// The last two characters, or all of a shorter text. LIKE reads a text up to its first U+0000.
std::string_view lastTwoCharacters(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    std::size_t begin = text.size();
    for (int characters = 0; begin > 0 && characters < 2;) {
        if (!text::continuesCharacter(text[--begin])) ++characters;
    }
    return text.substr(begin);
}

// A pair that LIKE takes for another one has the same key.
std::uint32_t keyOf(std::string_view pair) {
    std::uint64_t bytes = 0; // all of them: two characters take at most eight
    for (const char byte : pair) bytes = bytes << 8 | static_cast<unsigned char>(text::asciiLower(byte));
    bytes *= 0x9E3779B97F4A7C15;
    return std::max(static_cast<std::uint32_t>(bytes >> 32), anyPair + 1);
}

std::uint32_t endOf(std::string_view text) {
    const std::string_view end = lastTwoCharacters(text);
    if (!text::isValidUtf8(end) || holdsNoncharacter(end)) return anyPair;
    const auto characters =
        std::ranges::count_if(end, [](char byte) { return !text::continuesCharacter(byte); });
    return characters < 2 ? noPair : keyOf(end);
}

} // namespace

bool holdsNoncharacter(std::string_view text) {
    return text.find("\xEF\xBF\xBE") != std::string_view::npos ||
           text.find("\xEF\xBF\xBF") != std::string_view::npos;
}

ColumnEnds::Version ColumnEnds::currentVersion(sqlite3* database) {
    SqliteStatement others(database, "PRAGMA data_version;");
    return others.step() ? Version{others.integer(0), sqlite3_total_changes(database)} : Version();
}

bool ColumnEnds::refresh(sqlite3* database) {
    const Version current = currentVersion(database);
    if (current == Version()) return false;
    if (current == version_) return true;
    version_ = Version();
    if (gather(database)) version_ = current;
    return version_ == current;
}

// The texts out of the table in which FTS5 keeps them, which is quicker than by way of FTS5.
bool ColumnEnds::gather(sqlite3* database) {
    rows_.clear();
    SqliteStatement texts(database, "SELECT id, c1, c2, c3, c4, c5 FROM email_fts_content;");
    while (texts.step()) {
        Row row{texts.integer(0), {}};
        for (std::size_t column = 0; column < columnCount; ++column)
            row.ends[column] = endOf(texts.text(static_cast<int>(column) + 1).value_or(""));
        rows_.push_back(row);
    }
    return texts.status() == SQLITE_DONE;
}

void ColumnEnds::addRowsEndingWith(std::string_view pair, std::vector<std::int64_t>& rows) const {
    const std::uint32_t key = keyOf(pair);
    for (const Row& row : rows_) {
        const auto mayHold = [&](std::uint32_t end) { return end == key || end == anyPair; };
        if (std::ranges::any_of(row.ends, mayHold)) rows.push_back(row.id);
    }
}

} // namespace corvane::search
