#include "search/substring_search.h"

#include <random>
#include <utility>

#include "search/pair_search.h"
#include "search/search_fixture.h"
#include "text/case.h"
#include "text/charsets/charset.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::testing {
namespace {

using namespace std::string_literals;
using Random = std::mt19937;

std::size_t below(Random& random, std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

std::vector<std::string> piecesOf(std::string_view separated) {
    const auto pieces = text::splitText(separated, '|');
    return {pieces.begin(), pieces.end()};
}

// Few different characters, so that random texts meet; many kinds of them. U+212A folds to k.
const std::vector<std::string> soundPieces =
    piecesOf("a|A|b|B|k|K|s|i|z|Z|0|@|[|`|{| |\n|%|_|\\|\"|'|*|^|:|-|"
             "报|告|会|议|，|😀|👨‍👩‍👧|é|É|e\u0301|"
             "\u212A|ſ|ß|ẞ|İ|ı|Σ|σ|ς|Я|я|"
             "ﬀ|Ⅷ|ⅷ|𐐀|𐐨|\uFEFF|\uFFFD|\U0010FFFF|\u200B|\u0080");
// What SQLite reads as other characters than we do: U+FFFE and U+FFFF are U+FFFD to it.
const std::vector<std::string> brokenPieces =
    piecesOf("\uFFFE|\uFFFF|\x80|\xBF|\xC3|\xC0\x80|\xE4\xBD|\xF0\x9F\x98|\xFF|"
             "\xFE|\xED\xA0\x80|\xF8\x88\x80\x80\x80|\xC3\xA9\xA9|\xF4\x90\x80\x80|\0"s);

std::string randomText(Random& random, std::size_t longest, bool isSound) {
    std::string text;
    for (std::size_t count = below(random, longest + 1); count > 0; --count) {
        const bool takesBroken = !isSound && below(random, 8) == 0;
        const auto& pieces = takesBroken ? brokenPieces : soundPieces;
        text += pieces[below(random, pieces.size())];
    }
    return text;
}

std::vector<SearchIndexRow> randomRows(Random& random, std::size_t count, bool isSound) {
    std::vector<SearchIndexRow> rows;
    for (std::size_t number = 0; number < count; ++number) {
        const auto text = [&](std::size_t longest) { return randomText(random, longest, isSound); };
        rows.push_back({std::to_string(number), text(6), text(4), text(3), text(5), text(60)});
    }
    return rows;
}

std::vector<std::string> columnsOf(const SearchIndexRow& row) {
    return {row.subject.str(), row.sender.str(), row.recipients.str(), row.attachments, row.body};
}

// Half of the queries are parts of rows, some letters of them in the other case.
std::string randomQuery(Random& random, const std::vector<SearchIndexRow>& rows, bool isSound) {
    if (below(random, 2) == 0) return randomText(random, 5, isSound);
    const auto columns = columnsOf(rows[below(random, rows.size())]);
    const std::string& column = columns[below(random, columns.size())];
    if (column.empty()) return "";
    const std::size_t begin = below(random, column.size());
    std::string part = column.substr(begin, 1 + below(random, below(random, 4) == 0 ? 200 : 12));
    for (char& character : part) {
        const bool isLetter = (character | 0x20) >= 'a' && (character | 0x20) <= 'z';
        if (isLetter && below(random, 3) == 0) character = static_cast<char>(character ^ 0x20);
    }
    return isSound ? text::repairedUtf8(part) : part;
}

// What the search means, said without SQL.
SharedTextSet idsByOracle(const std::vector<SearchIndexRow>& rows, std::string_view text) {
    const std::string wanted = text::asciiLowercased(text);
    SharedTextSet ids;
    for (const SearchIndexRow& row : rows) {
        for (const std::string& column : columnsOf(row)) {
            if (text::asciiLowercased(column).find(wanted) != std::string::npos) ids.insert(row.id);
        }
    }
    return ids;
}

struct Counts {
    int byTrigrams = 0;
    int byPairs = 0;
    int withResults = 0;
};

// Each way gives the same rows for each query.
Counts compareWays(Random& random, const MailSearchIndex& index, sqlite3* database,
                   const std::vector<SearchIndexRow>& rows, int queries, bool isSound) {
    Counts counts;
    for (int number = 0; number < queries; ++number) {
        const std::string query = randomQuery(random, rows, isSound);
        const std::string_view text = text::trimWhitespaceAndNewlines(query);
        if (text.empty()) continue;
        const auto expected = search::idsByScan(database, text);
        EXPECT_TRUE(expected) << query;
        EXPECT_EQ(index.search(query), *expected) << ::testing::PrintToString(query);
        const auto byTrigrams = search::TrigramStatements(database).ids(text);
        EXPECT_EQ(byTrigrams.value_or(*expected), *expected) << ::testing::PrintToString(query);
        const auto byPairs = search::PairStatements(database).ids(text);
        EXPECT_EQ(byPairs.value_or(*expected), *expected) << ::testing::PrintToString(query);
        EXPECT_EQ(isSound ? idsByOracle(rows, text) : *expected, *expected)
            << ::testing::PrintToString(query);
        counts.byTrigrams += byTrigrams ? 1 : 0;
        counts.byPairs += byPairs ? 1 : 0;
        counts.withResults += expected->empty() ? 0 : 1;
    }
    return counts;
}

TEST_F(SearchTest, Search_GivesTheSameRowsWhicheverWayIsTaken) {
    for (const bool isSound : {true, false}) {
        for (unsigned seed = 1; seed <= 4; ++seed) {
            Random random(seed);
            root_ = home_.at("archive" + std::to_string(seed) + (isSound ? "s" : "b"));
            const auto index = open();
            const auto rows = randomRows(random, 40 + 150 * (seed % 3), isSound);
            index->bulkInsert(rows);
            const Counts counts = compareWays(random, *index, foreign().get(), rows, 400, isSound);
            EXPECT_GT(counts.byTrigrams, 60) << seed;
            EXPECT_GT(counts.byPairs, 20) << seed;
            EXPECT_GT(counts.withResults, 120) << seed;
            if (::testing::Test::HasFailure()) return;
        }
    }
}

// Where LIKE isn't asked again: few characters, so that their trigrams meet in every order, with what splits
// them, hides them from the index or is read as one of them.
TEST_F(SearchTest, Search_OfWhatNothingElseFoldsToIsExactWithoutLike) {
    const std::vector<std::string> pieces = {"会",       "议",
                                             "会",       "议",
                                             "室",       "a",
                                             "A",        "k",
                                             "\u212A",   " ",
                                             "\u200B",   std::string(1, '\0'),
                                             "\xE4\xBC", "\xF0\x84\xBC\x9A",
                                             "\xC1\xA1", "\U00020000"};
    Random random(5);
    const auto index = open();
    std::vector<SearchIndexRow> rows;
    for (int number = 0; number < 600; ++number) {
        std::vector<std::string> texts(2);
        for (std::string& text : texts) {
            for (std::size_t count = below(random, 9); count > 0; --count)
                text += pieces[below(random, pieces.size())];
        }
        rows.push_back({std::to_string(number), texts[0], "", "", "", texts[1]});
    }
    index->bulkInsert(rows);
    const auto connection = foreign();
    int answered = 0;
    for (int number = 0; number < 300; ++number) {
        std::string text;
        for (std::size_t count = 3 + below(random, 3); count > 0; --count) text += pieces[below(random, 8)];
        const auto expected = search::idsByScan(connection.get(), text);
        const auto found = search::TrigramStatements(connection.get()).ids(text);
        EXPECT_EQ(found.value_or(*expected), *expected) << text;
        answered += found && !found->empty() ? 1 : 0;
    }
    EXPECT_GT(answered, 100);
    std::string longest; // asked for by pieces, between which a row may differ
    for (int i = 0; i < 60; ++i) longest += pieces[below(random, 5)];
    std::string other = longest;
    other.replace(90, 3, "外");
    index->bulkInsert(std::vector{rowOf("other", other)});
    EXPECT_TRUE(index->search(longest).empty());
    EXPECT_EQ(index->search(other), SharedTextSet{"other"});
}

TEST_F(SearchTest, Search_GivesTheSameRowsInDatabasesThatSomebodyElseMade) {
    Random random(11);
    const auto rows = randomRows(random, 60, false);
    const std::vector<const char*> beginnings = {
        "PRAGMA encoding = 'UTF-16';",
        "CREATE VIRTUAL TABLE email_fts USING fts5(record_id UNINDEXED, subject, sender, recipients, "
        "attachments, body);",
        "CREATE TABLE email_fts(record_id, subject, sender, recipients, attachments, body);",
        "CREATE VIRTUAL TABLE email_fts USING fts5(record_id UNINDEXED, subject, sender, recipients, "
        "attachments, body, tokenize='trigram case_sensitive 1');",
        "CREATE VIRTUAL TABLE email_fts USING fts5(record_id UNINDEXED, subject, sender, recipients, "
        "attachments, body, tokenize='trigram', detail=none);"};
    for (std::size_t number = 0; number < beginnings.size(); ++number) {
        root_ = home_.at("foreign" + std::to_string(number));
        run(std::string(beginnings[number]) + "CREATE TABLE other(x);");
        const auto index = open();
        ASSERT_NE(index, nullptr) << beginnings[number];
        index->bulkInsert(rows);
        run("INSERT INTO email_fts(record_id, subject, body) VALUES('blob', 12345, X'616263C3');"
            "INSERT INTO email_fts(record_id, body) VALUES(NULL, 'abcabc');");
        const auto connection = foreign();
        for (int query = 0; query < 200; ++query) {
            const std::string text = randomQuery(random, rows, false);
            const std::string_view trimmed = text::trimWhitespaceAndNewlines(text);
            if (trimmed.empty()) continue;
            EXPECT_EQ(index->search(text), *search::idsByScan(connection.get(), trimmed))
                << beginnings[number] << ::testing::PrintToString(text);
        }
    }
}

TEST_F(SearchTest, Search_OfALongTextNeedsAllOfIt) {
    const auto index = open();
    std::string text;
    for (int i = 0; i < 400; ++i) text += std::to_string(i) + "号文件 ";
    std::string almost = text;
    almost.replace(almost.find("201号"), 3, "xyz");
    index->bulkInsert(std::vector{rowOf("whole", "begin " + text + " end"), rowOf("almost", almost)});
    EXPECT_EQ(index->search(text), SharedTextSet{"whole"});
    EXPECT_TRUE(index->search(std::string(60000, 'a')).empty()) << "LIKE refuses patterns over 50,000 bytes";
}

} // namespace
} // namespace corvane::testing
