#include "search/pair_search.h"

#include <stop_token>
#include <thread>
#include <utility>

#include "search/search_fixture.h"

namespace corvane::testing {
namespace {

// Characters that are equal for LIKE, for the tokenizer, for both or for neither, that mean something in a
// pattern or in a query of the index, and bytes that are none.
const std::vector<std::string> characters = {"a", "A",  "k",  "K", "\u212A", "ſ",      "%",
                                             "_", "\\", "\"", " ", "会",     "议",     "😀",
                                             "é", "É",  "İ",  "ı", "\uFFFD", "\uFFFE", "\u0080"};
const std::vector<std::string> broken = {std::string(1, '\0'), "\x80", "\xC3", "\xE4\xBC", "\xED\xA0\x80",
                                         "\xF0\x84\xBC\x9A"}; // 会, but in four bytes

// All texts of up to two of the characters, alone and as an end, a beginning and a middle.
std::vector<std::string> columnTexts() {
    const std::string hidden("\0会议", 7); // nothing reads on behind U+0000
    std::vector<std::string> pieces = characters;
    pieces.insert(pieces.end(), broken.begin(), broken.end());
    std::vector<std::string> texts = {"", "议会议"};
    for (const std::string& first : pieces) {
        texts.push_back(first);
        for (const std::string& second : pieces) {
            const std::string pair = first + second;
            texts.insert(texts.end(), {pair, "x" + pair, pair + "x", "x" + pair + "y", pair + hidden});
        }
    }
    return texts;
}

// One text in a column of each row, the columns in turn.
std::vector<SearchIndexRow> rowsOf(const std::vector<std::string>& texts) {
    std::vector<SearchIndexRow> rows;
    for (std::size_t number = 0; number < texts.size(); ++number) {
        SearchIndexRow row{std::to_string(number), "", "", "", "", ""};
        const std::string& text = texts[number];
        switch (number % 5) {
        case 0:
            row.subject = text;
            break;
        case 1:
            row.sender = text;
            break;
        case 2:
            row.recipients = text;
            break;
        case 3:
            row.attachments = text;
            break;
        default:
            row.body = text;
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

TEST_F(SearchTest, PairSearch_FindsEveryPairOfCharactersWhereverItStands) {
    const auto index = open();
    const auto texts = columnTexts();
    index->bulkInsert(rowsOf(texts));
    const auto connection = foreign();
    search::PairStatements pairs(connection.get());
    int answered = 0;
    for (const std::string& first : characters) {
        for (const std::string& second : characters) {
            const std::string pair = first + second;
            const auto expected = search::idsByScan(connection.get(), pair);
            const auto found = pairs.ids(pair);
            EXPECT_GE(expected->size(), 5U) << pair;
            EXPECT_EQ(found.value_or(*expected), *expected) << ::testing::PrintToString(pair);
            answered += found ? 1 : 0;
        }
    }
    EXPECT_EQ(answered, 20 * 20) << "all but those with U+FFFE";
}

// Each change is made by this connection or by another one, and none of them leaves the number of rows or the
// highest row as a sign.
TEST_F(SearchTest, PairSearch_SeesWhatWasWrittenSinceTheLastOne) {
    const auto index = open();
    const auto other = open();
    const auto idsOf = [&](const char* pair) { return index->search(pair); };
    index->bulkInsert(std::vector{rowOf("a", "开会"), rowOf("b", "散会")});
    EXPECT_EQ(idsOf("开会"), SharedTextSet{"a"});
    EXPECT_EQ(idsOf("开会"), SharedTextSet{"a"});
    for (MailSearchIndex* writer : {index.get(), other.get()}) {
        writer->remove("b");
        writer->bulkInsert(std::vector{rowOf("b", "开会")});
        EXPECT_EQ(idsOf("开会"), (SharedTextSet{"a", "b"}));
        writer->remove("b");
        writer->bulkInsert(std::vector{rowOf("b", "散会")});
        EXPECT_EQ(idsOf("开会"), SharedTextSet{"a"});
        EXPECT_EQ(idsOf("散会"), SharedTextSet{"b"});
        writer->clear(); // rows are counted from 1 again
        EXPECT_EQ(idsOf("开会"), SharedTextSet{});
        writer->bulkInsert(std::vector{rowOf("a", "开会"), rowOf("b", "散会")});
        EXPECT_EQ(idsOf("散会"), SharedTextSet{"b"});
    }
    run("UPDATE email_fts SET body = '开会' WHERE record_id = 'b';");
    EXPECT_EQ(idsOf("开会"), (SharedTextSet{"a", "b"}));
}

// Rows come and go while others search, by the same connection too: what stands in the index all the time is
// found each time.
TEST_F(SearchTest, PairSearch_FindsWhatStaysWhileRowsComeAndGo) {
    const auto index = open();
    const auto other = open();
    index->bulkInsert(std::vector{rowOf("stays", "下午开会"), rowOf("apart", "开会之前")});
    for (MailSearchIndex* written : {index.get(), other.get()}) {
        std::jthread writer([&](const std::stop_token& stop) {
            for (int number = 0; !stop.stop_requested(); ++number) {
                const std::string id = std::to_string(number);
                written->bulkInsert(std::vector{rowOf(id.c_str(), "散会"), rowOf("last", "开会")});
                written->remove("last");
                written->remove(id);
            }
        });
        const auto search = [&] {
            for (int round = 0; round < 200; ++round) {
                const SharedTextSet ids = index->search("开会");
                EXPECT_TRUE(ids.contains("stays") && ids.contains("apart"));
                EXPECT_LE(ids.size(), 3U);
            }
        };
        const std::jthread first(search);
        search();
    }
}

TEST_F(SearchTest, PairSearch_LeavesCommonPairsAndForeignTablesToTheStatement) {
    const auto index = open();
    std::vector<SearchIndexRow> rows;
    rows.reserve(1500);
    for (int i = 0; i < 1500; ++i)
        rows.push_back(rowOf(std::to_string(i).c_str(), i % 500 == 0 ? "常见和罕见" : "常见的字"));
    index->bulkInsert(rows);
    EXPECT_EQ(index->search("常见").size(), rows.size());
    EXPECT_EQ(index->search("罕见").size(), 3U);
    const auto connection = foreign();
    EXPECT_EQ(search::PairStatements(connection.get()).ids("常见"), std::nullopt);
    EXPECT_EQ(search::PairStatements(connection.get()).ids("罕见")->size(), 3U);
    root_ = home_.at("utf16");
    run("PRAGMA encoding = 'UTF-16'; CREATE TABLE other(x);");
    const auto wide = open();
    wide->bulkInsert(rows);
    EXPECT_EQ(search::PairStatements(foreign().get()).ids("罕见"), std::nullopt);
    EXPECT_EQ(wide->search("罕见").size(), 3U);
}

} // namespace
} // namespace corvane::testing
