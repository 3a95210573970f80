#include "search/pair_search.h"

#include <algorithm>
#include <memory>

#include "search/search_database.h"
#include "text/charsets/charset.h"
#include "text/charsets/utf8_step.h"

namespace corvane::search {

namespace {

using platform::SqliteStatement;

// Rows are looked up in the order of the file, at about one row of the plain statement each, and two where
// LIKE is asked. Naming them costs something, too, and is for nothing where they turn out to be too many.
constexpr std::int64_t rowsOfTableForOneLookup = 4;
constexpr std::int64_t rowsOfTableForOneTest = 8;
constexpr std::int64_t fewestLookups = 64;

constexpr const char* termsTable =
    "CREATE VIRTUAL TABLE IF NOT EXISTS temp.email_fts_terms USING fts5vocab(main, email_fts, instance);";

struct DeleteTokenizer {
    const fts5_tokenizer& methods;

    void operator()(Fts5Tokenizer* tokenizer) const { methods.xDelete(tokenizer); }
};

// https://sqlite.org/fts5.html#extending_fts5
fts5_api* fullTextInterface(sqlite3* database) {
    fts5_api* interface = nullptr;
    SqliteStatement query(database, "SELECT fts5(?1);");
    query.bindPointer(1, static_cast<void*>(&interface), "fts5_api_ptr");
    query.step();
    return interface;
}

int takeToken(void* token, int /*flags*/, const char* text, int size, int /*begin*/, int /*end*/) {
    static_cast<std::string*>(token)->assign(text, static_cast<std::size_t>(size));
    return SQLITE_OK;
}

// What all terms begin with that are a trigram of the pair and one more character.
std::optional<std::string> beginningOfTerms(sqlite3* database, std::string_view pair) {
    fts5_api* interface = fullTextInterface(database);
    void* context = nullptr;
    fts5_tokenizer methods{};
    if (interface == nullptr ||
        interface->xFindTokenizer(interface, "trigram", &context, &methods) != SQLITE_OK)
        return std::nullopt;
    Fts5Tokenizer* made = nullptr;
    if (methods.xCreate(context, nullptr, 0, &made) != SQLITE_OK) return std::nullopt;
    const std::unique_ptr<Fts5Tokenizer, DeleteTokenizer> tokenizer(made, DeleteTokenizer{methods});
    const std::string trigram = std::string(pair) + '0';
    std::string token;
    if (methods.xTokenize(made, &token, FTS5_TOKENIZE_QUERY, trigram.data(), static_cast<int>(trigram.size()),
                          takeToken) != SQLITE_OK ||
        !token.ends_with('0'))
        return std::nullopt;
    token.pop_back();
    return token;
}

bool isInUtf8(sqlite3* database) {
    SqliteStatement encoding(database, "PRAGMA encoding;");
    return encoding.step() && encoding.text(0) == "UTF-8";
}

void sortOut(std::vector<std::int64_t>& rows) {
    std::ranges::sort(rows);
    rows.erase(std::ranges::unique(rows).begin(), rows.end());
}

} // namespace

bool isPair(std::string_view text) {
    const auto begins = [](char byte) { return !text::continuesCharacter(byte); };
    return text.size() <= 8 && text::isValidUtf8(text) && std::ranges::count_if(text, begins) == 2 &&
           text.find('\0') == std::string_view::npos && !holdsNoncharacter(text);
}

bool PairStatements::prepare() {
    if (lookups_) return static_cast<bool>(occurrences_);
    lookups_.emplace(database_, SQLITE_PREPARE_PERSISTENT);
    if (isInUtf8(database_) && execute(database_, termsTable) == SQLITE_OK)
        occurrences_ =
            SqliteStatement(database_, "SELECT doc FROM temp.email_fts_terms WHERE term >= ?1 AND term < ?2;",
                            SQLITE_PREPARE_PERSISTENT);
    return static_cast<bool>(occurrences_);
}

std::optional<SharedTextSet> PairStatements::ids(std::string_view pair) {
    if (!isPair(pair) || !prepare()) return std::nullopt;
    const auto beginning = beginningOfTerms(database_, pair);
    const Snapshot snapshot(database_);
    if (!beginning || !snapshot) return std::nullopt;
    const auto share = areIdeographs(pair) ? rowsOfTableForOneLookup : rowsOfTableForOneTest;
    auto rows = rowsOfTrigrams(*beginning, std::max(fewestLookups, highestRowID(database_) / share));
    occurrences_.reset();
    if (!rows || !ends_.refresh(database_)) return std::nullopt;
    return idsOf(pair, std::move(*rows));
}

// One row of the answer for each place where such a trigram stands.
std::optional<std::vector<std::int64_t>> PairStatements::rowsOfTrigrams(std::string_view beginning,
                                                                        std::int64_t limit) {
    occurrences_.bindText(1, beginning);
    occurrences_.bindText(2, std::string(beginning) + '\xFF');
    std::vector<std::int64_t> rows;
    while (occurrences_.step()) {
        const std::int64_t row = occurrences_.integer(0);
        if (rows.empty() || rows.back() != row) rows.push_back(row);
        if (std::ssize(rows) < limit + limit / 4) continue;
        sortOut(rows);
        if (std::ssize(rows) > limit) return std::nullopt;
    }
    if (occurrences_.status() != SQLITE_DONE) return std::nullopt;
    sortOut(rows);
    return rows;
}

std::optional<SharedTextSet> PairStatements::idsOf(std::string_view pair, std::vector<std::int64_t> rows) {
    std::vector<std::int64_t> certain;
    if (areIdeographs(pair)) std::swap(certain, rows);
    ends_.addRowsEndingWith(pair, rows);
    sortOut(rows);
    auto ids = lookups_->idsHolding(pair, rows);
    if (ids && !lookups_->addIDs(certain, *ids)) return std::nullopt;
    return ids;
}

} // namespace corvane::search
