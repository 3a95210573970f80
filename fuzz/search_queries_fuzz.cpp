// Searches against what they stand for: the plain statement with LIKE on a connection of its own, and where
// the texts are sound, a search by hand. One row of the database is of the input, the others are always the
// same.
//
// An input is the query and the columns of the row, separated by U+001E. A query of U+001F and three bytes is
// a piece of a text in the database.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "fuzz_kit.h"
#include "platform/platform.h"
#include "platform/sqlite.h"
#include "records/stores/app_support.h"
#include "search/mail_search_index.h"
#include "search/search_index_files.h"
#include "text/charsets/ascii.h"
#include "text/charsets/charset.h"
#include "text/trim.h"

using namespace corvane;
using fuzz::require;

namespace {

constexpr char separator = '\x1E';
constexpr char pieceMark = '\x1F';
constexpr const char* ownID = "of the input";

// More than are looked up one by one, so that frequent texts are searched for in another way.
constexpr std::size_t rowCount = 160;

using Columns = std::array<std::string, 5>;

const std::vector<std::string>& words() {
    static const std::vector<std::string> all = {"报告",
                                                 "会议纪要",
                                                 "合同（终稿）",
                                                 "Straße",
                                                 "STRASSE",
                                                 "İstanbul",
                                                 "ıI",
                                                 "Ǆǆ",
                                                 "ﬁnal",
                                                 "e\u0301",
                                                 "é",
                                                 "100%_ok",
                                                 "a\\b",
                                                 "\"quoted\"",
                                                 "don't",
                                                 "株式会社",
                                                 "\U0001F468\u200D\U0001F469",
                                                 "𠮷野家",
                                                 "\uFFFE",
                                                 "\uFFFF",
                                                 "\uFFFD",
                                                 "한국어",
                                                 "Ωmega",
                                                 "ẞ",
                                                 "K",
                                                 "ſ",
                                                 "ff",
                                                 "aaaa",
                                                 "abab",
                                                 "  ",
                                                 "\t",
                                                 "\u3000",
                                                 "-",
                                                 "*",
                                                 "^",
                                                 "NEAR",
                                                 "AND",
                                                 "subject:"};
    return all;
}

// Of few words, so that what a query finds changes with each of its characters.
Columns columnsOf(std::size_t number) {
    Columns columns;
    std::size_t next = number * 7919;
    for (std::string& column : columns) {
        const std::size_t count = next % 4;
        for (std::size_t i = 0; i < count; ++i)
            column += words()[(next / 4 + i * i * number) % words().size()];
        next = next / 3 + number * 31;
    }
    if (number % 16 == 0) columns[4] += "\xE6\x8A bytes that are no text \xFF";
    if (number % 25 == 0) columns[3] += std::string("before\0after", 12);
    return columns;
}

SearchIndexRow rowOf(const std::string& id, const Columns& columns) {
    return {id, columns[0], columns[1], columns[2], columns[3], columns[4]};
}

class Database {
  public:
    Database()
      : index_(MailSearchIndex::openOrReset(support_, "/archive")) {
        std::vector<SearchIndexRow> rows;
        for (std::size_t number = 0; number < rowCount; ++number) {
            texts_.push_back(columnsOf(number));
            rows.push_back(rowOf(fmt::format("row {}", number), texts_.back()));
        }
        texts_.emplace_back();
        rows.push_back(rowOf(ownID, texts_.back()));
        require(index_ != nullptr && index_->bulkInsert(rows) == rows.size());
        const std::string path = search::databaseURL(support_, "/archive")->path().str();
        sqlite3* handle = nullptr;
        require(sqlite3_open(path.c_str(), &handle) == SQLITE_OK);
        plain_.reset(handle);
    }

    void setOwnTexts(const Columns& columns) {
        if (columns == texts_.back()) return;
        texts_.back() = columns;
        index_->remove(ownID);
        require(index_->bulkInsert(std::vector{rowOf(ownID, columns)}) == 1);
    }

    [[nodiscard]] std::string pieceOfText(std::size_t row, std::size_t begin, std::size_t size) const {
        const Columns& columns = texts_[row == 0 ? texts_.size() - 1 : row % texts_.size()];
        std::string all;
        for (const std::string& column : columns) all += column;
        return all.empty() ? all : all.substr(begin % all.size(), size % 64);
    }

    void check(std::string_view query) const {
        const auto found = index_->searchIfReadable(query);
        require(found.has_value());
        const std::string_view text = text::trimWhitespaceAndNewlines(query);
        const std::set<std::string> ids(found->begin(), found->end());
        require(ids == (text.empty() ? std::set<std::string>() : byStatement(text)));
        if (isSound(text)) checkByHand(text, ids);
    }

  private:
    static bool isSound(std::string_view text) {
        return !text.empty() && text::isValidUtf8(text) && text.find('\0') == std::string_view::npos &&
               text.find("\xEF\xBF") == std::string_view::npos; // what SQLite reads as another character
    }

    [[nodiscard]] std::set<std::string> byStatement(std::string_view text) const {
        platform::SqliteStatement statement(plain_.get(), R"(SELECT record_id FROM email_fts WHERE
            subject LIKE ?1 ESCAPE '!' OR sender LIKE ?1 ESCAPE '!' OR recipients LIKE ?1 ESCAPE '!' OR
            attachments LIKE ?1 ESCAPE '!' OR body LIKE ?1 ESCAPE '!';)");
        std::string pattern = "%";
        for (const char character : text) {
            if (character == '%' || character == '_' || character == '!') pattern += '!';
            pattern += character;
        }
        statement.bindText(1, pattern + "%");
        std::set<std::string> ids;
        while (statement.step()) ids.emplace(statement.text(0).value());
        require(statement.status() == SQLITE_DONE);
        return ids;
    }

    void checkByHand(std::string_view text, const std::set<std::string>& ids) const {
        const auto holds = [&](const std::string& column) {
            return !std::ranges::search(column, text, {}, text::asciiLower, text::asciiLower).empty();
        };
        for (std::size_t number = 0; number < texts_.size(); ++number) {
            const Columns& columns = texts_[number];
            if (!std::ranges::all_of(columns,
                                     [](const auto& column) { return column.empty() || isSound(column); }))
                continue;
            const std::string id = number + 1 == texts_.size() ? ownID : fmt::format("row {}", number);
            require(ids.contains(id) == std::ranges::any_of(columns, holds));
        }
    }

    fuzz::FuzzFolder home_;
    std::unique_ptr<platform::Platform> platform_ = platform::makePlatform(home_.path());
    CorvaneAppSupport support_{*platform_};
    std::unique_ptr<MailSearchIndex> index_;
    platform::SqliteConnection plain_;
    std::vector<Columns> texts_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Database database;
    fuzz::InputReader reader(fuzz::textOf(data, size));
    std::string query(reader.field(separator));
    Columns columns;
    for (std::string& column : columns) column = reader.field(separator);
    database.setOwnTexts(columns);
    if (query.starts_with(pieceMark)) {
        fuzz::InputReader place(std::string_view(query).substr(1));
        const std::size_t row = place.byte();
        const std::size_t begin = place.byte();
        query = database.pieceOfText(row, begin, place.byte());
    }
    database.check(query);
    return 0;
}
