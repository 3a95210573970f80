// A support folder of its own for each test, with search databases of archives that need not exist.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "platform/sqlite.h"
#include "records/stable_hash.h"
#include "records/stores/app_support.h"
#include "search/mail_search_index.h"
#include "search/search_index_files.h"
#include "support/temporary_home.h"

namespace corvane::testing {

inline SearchIndexRow rowOf(const char* id, std::string body, const char* subject = "") {
    return {id, subject, "", "", "", std::move(body)};
}

// The key of the database that older versions made for an archive.
inline std::string slashedKey(const std::string& root) {
    return stableHash(root + "/");
}

class SearchTest : public ::testing::Test {
  protected:
    [[nodiscard]] std::unique_ptr<MailSearchIndex> open() const {
        return MailSearchIndex::open(support_, root_);
    }

    [[nodiscard]] std::string path() const { return search::databaseURL(support_, root_)->path().str(); }

    // A connection past the index, as somebody else would have it.
    [[nodiscard]] platform::SqliteConnection foreign() const {
        sqlite3* handle = nullptr;
        EXPECT_EQ(sqlite3_open(path().c_str(), &handle), SQLITE_OK);
        return platform::SqliteConnection(handle);
    }

    void run(const std::string& sql) const {
        const auto connection = foreign();
        char* message = nullptr;
        EXPECT_EQ(sqlite3_exec(connection.get(), sql.c_str(), nullptr, nullptr, &message), SQLITE_OK)
            << message << " in " << sql;
        sqlite3_free(message);
    }

    [[nodiscard]] std::int64_t number(const std::string& sql) const {
        const auto connection = foreign();
        platform::SqliteStatement statement(connection.get(), sql.c_str());
        EXPECT_TRUE(statement.step()) << sql;
        return statement.integer(0);
    }

    TemporaryHome home_;
    CorvaneAppSupport support_{home_.platform()};
    std::string root_ = home_.at("archive");
};

} // namespace corvane::testing
