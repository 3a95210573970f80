// A damaged or hostile Envelope Index read by our own questions: over a connection of this process, and at a
// slower rate through the shell, which has to list the same messages.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

#include "database_damage.h"
#include "fuzz_kit.h"
#include "mailstore/index/candidate_pieces.h"
#include "mailstore/index/candidate_query.h"
#include "mailstore/index/excluded_mailboxes.h"
#include "mailstore/index/indexed_messages.h"
#include "mailstore/mail_store_context.h"
#include "mailstore/sqlite/mail_index_query_error.h"
#include "mailstore/sqlite/sqlite_connection.h"
#include "platform/platform.h"
#include "platform/sqlite.h"
#include "records/stores/app_support.h"
#include "text/charsets/charset.h"

using namespace corvane;
using fuzz::require;

namespace {

// A shell costs as much as some hundred questions here.
constexpr std::size_t inputsForOneShell = 256;

constexpr int mostSteps = 1'000'000;

constexpr const char* soundStore = R"(
CREATE TABLE mailboxes(ROWID INTEGER PRIMARY KEY, url TEXT UNIQUE);
CREATE TABLE messages(ROWID INTEGER PRIMARY KEY, message_id INTEGER, mailbox INTEGER, subject INTEGER, subject_prefix TEXT,
  sender INTEGER, display_date INTEGER, date_received INTEGER, date_sent INTEGER, size INTEGER);
CREATE TABLE subjects(ROWID INTEGER PRIMARY KEY, subject TEXT);
CREATE TABLE addresses(ROWID INTEGER PRIMARY KEY, address TEXT, comment TEXT);
CREATE TABLE recipients(ROWID INTEGER PRIMARY KEY, message INTEGER, address INTEGER, type INTEGER, position INTEGER);
CREATE TABLE attachments(ROWID INTEGER PRIMARY KEY, message INTEGER, name TEXT);
CREATE TABLE message_global_data(ROWID INTEGER PRIMARY KEY, message_id INTEGER, message_id_header TEXT);
CREATE INDEX messages_mailbox ON messages(mailbox);
CREATE INDEX recipients_message ON recipients(message);
CREATE INDEX attachments_message ON attachments(message);
INSERT INTO mailboxes(url) VALUES('imap://AAAAAAAA-1111-2222-3333-444444444444/INBOX'), ('ews://B/Deleted%20Messages'),
  ('local://C/%E6%94%B6%E4%BB%B6'), ('imap://AAAAAAAA-1111-2222-3333-444444444444/Junk');
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40)
INSERT INTO messages(message_id, mailbox, subject, subject_prefix, sender, display_date, date_received, size)
  SELECT i, i % 4 + 1, i, CASE WHEN i % 5 = 0 THEN 'Re: ' END, i, CASE WHEN i % 3 THEN 1704067200 + i ELSE 0 END, 1700000000, i * 100 FROM n;
INSERT INTO subjects(subject) SELECT '关于第 ' || ROWID || ' 次会议 subject' FROM messages;
INSERT INTO addresses(address, comment) SELECT 'user' || ROWID || '@example.com', CASE WHEN ROWID % 2 THEN 'Name, ' || ROWID END FROM messages;
INSERT INTO recipients(message, address, type, position) SELECT ROWID, 41 - ROWID, 0, 1 FROM messages;
INSERT INTO attachments(message, name) SELECT ROWID, '合同^_' || ROWID || '.pdf' FROM messages WHERE ROWID % 4 = 0;
INSERT INTO message_global_data(message_id, message_id_header) SELECT ROWID, '<' || ROWID || '@Example.com>' FROM messages;
)";

// The row of a statement, as the shell would hand it over.
class StatementRow final : public mailstore::JsonRow {
  public:
    explicit StatementRow(sqlite3_stmt* statement)
      : statement_(statement) {}

    std::optional<std::string_view> text(std::string_view column) override {
        const int number = numberOf(column);
        if (number < 0 || sqlite3_column_type(statement_, number) != SQLITE_TEXT) return std::nullopt;
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, number));
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, number));
        return texts_.emplace_back(text::repairedUtf8({bytes, size}));
    }

    std::optional<mailstore::JsonNumber> number(std::string_view column) override {
        const int number = numberOf(column);
        if (number < 0 || sqlite3_column_type(statement_, number) != SQLITE_INTEGER) return std::nullopt;
        return mailstore::JsonNumber{.whole = sqlite3_column_int64(statement_, number)};
    }

  private:
    [[nodiscard]] int numberOf(std::string_view column) const {
        for (int number = 0; number < sqlite3_column_count(statement_); ++number) {
            if (sqlite3_column_name(statement_, number) == column) return number;
        }
        return -1;
    }

    sqlite3_stmt* statement_;
    std::list<std::string> texts_;
};

void checkRecord(const IndexedMessageCandidate& candidate) {
    TextInterner texts;
    auto record = mailstore::recordFromCandidate(candidate, FileURL("/1.emlx"), {}, texts);
    mailstore::mailboxLabels(candidate.mailboxURL, {{"imap://A", "me@example.org"}}).applyTo(record);
    for (const SharedText& text : {record.subject, record.sender, record.recipients, record.mailbox})
        require(text::isValidUtf8(text));
}

// What a question of the scan gives: where each message stands, newest first.
struct Listed {
    std::int64_t date;
    std::int64_t rowID;

    bool operator==(const Listed&) const = default;
};

using Listing = std::vector<Listed>;

constexpr auto isListedBefore = [](const Listed& a, const Listed& b) {
    return a.date != b.date ? a.date > b.date : a.rowID < b.rowID;
};

int stopAtOnce(void* /*unused*/) {
    return 1;
}

class Store {
  public:
    Store() {
        std::filesystem::create_directories(home_.at("Library/Mail/V10/MailData"));
        sqlite3* handle = nullptr;
        require(sqlite3_open(index_.c_str(), &handle) == SQLITE_OK);
        const platform::SqliteConnection database(handle);
        require(sqlite3_exec(handle, soundStore, nullptr, nullptr, nullptr) == SQLITE_OK);
        sound_ = fuzz::readWhole(index_);
    }

    [[nodiscard]] const std::string& sound() const { return sound_; }

    void replaceIndex(std::string_view bytes) const {
        for (const char* suffix : {"-wal", "-shm", "-journal"}) std::filesystem::remove(index_ + suffix);
        fuzz::writeFile(index_, bytes);
    }

    void askForMailboxes() const { mailstore::trashAndJunkMailboxIDs(context_, index_); }

    // The messages that the question lists; absent when it fails or takes more steps.
    [[nodiscard]] std::optional<Listing> ask(const std::string& sql, int steps) const {
        try {
            const mailstore::ReadOnlyConnection connection(
                index_, mailstore::ReadOnlyConnection::NameKind::path,
                {.deadline = std::chrono::steady_clock::time_point::max(), .stop = {}});
            // Not by the clock, so that a finding is found again.
            sqlite3_progress_handler(connection.handle(), steps, stopAtOnce, nullptr);
            sqlite3_stmt* statement = nullptr;
            sqlite3_prepare_v2(connection.handle(), sql.c_str(), -1, &statement, nullptr);
            const auto listing = listed(statement);
            sqlite3_finalize(statement);
            return listing;
        } catch (const mailstore::SqliteError&) {
            return std::nullopt;
        }
    }

    // The same by the shell, in pieces.
    [[nodiscard]] std::optional<std::size_t> countByShell() const {
        std::size_t count = 0;
        try {
            mailstore::CandidatePieces pieces(context_, home_.at("Library/Mail"), {}, 2);
            while (const auto piece = pieces.next()) {
                const bool isWhole = mailstore::readJsonRows(piece->path(), [&](mailstore::JsonRow& row) {
                    const auto candidate = mailstore::candidateOf(row);
                    if (candidate) checkRecord(*candidate);
                    if (candidate) ++count;
                });
                if (!isWhole) return std::nullopt;
            }
        } catch (const MailIndexQueryError&) {
            return std::nullopt;
        }
        return count;
    }

    // Its form is sound, whatever it holds, and it answers the same each time.
    [[nodiscard]] bool isSound() const {
        sqlite3* handle = nullptr;
        sqlite3_open(index_.c_str(), &handle);
        const platform::SqliteConnection database(handle);
        platform::SqliteStatement check(handle, "PRAGMA integrity_check(1);");
        if (!check.step() || check.text(0) != "ok") return false;
        platform::SqliteStatement views(
            handle, "SELECT 1 FROM sqlite_schema WHERE type != 'table' AND type != 'index';");
        return !views.step() && views.status() == SQLITE_DONE;
    }

  private:
    static std::optional<Listing> listed(sqlite3_stmt* statement) {
        if (statement == nullptr) return std::nullopt;
        Listing listing;
        int status = sqlite3_step(statement);
        for (; status == SQLITE_ROW; status = sqlite3_step(statement)) {
            StatementRow row(statement);
            const auto candidate = mailstore::candidateOf(row);
            if (candidate) checkRecord(*candidate);
            if (candidate) listing.push_back({row.integer("msgDate").value_or(-1), candidate->rowID});
        }
        return status == SQLITE_DONE ? std::optional(listing) : std::nullopt;
    }

    fuzz::FuzzFolder home_;
    std::string index_ = home_.at("Library/Mail/V10/MailData/Envelope Index");
    std::unique_ptr<platform::Platform> platform_ = platform::makePlatform(home_.path());
    CorvaneAppSupport support_{*platform_};
    MailStoreContext context_{.platform = *platform_,
                              .support = support_,
                              .queryTimeLimit = std::chrono::seconds(1),
                              .longQueryTimeLimit = std::chrono::seconds(1)};
    std::string sound_;
};

// Of the bytes themselves, so that a finding is found again.
bool isForShell(std::string_view input) {
    return std::hash<std::string_view>()(input) % inputsForOneShell == 0;
}

// Pieces that were asked by ranges of rows, joined, are what the one question gives.
void checkPieces(const Store& store, const Listing& whole, std::int64_t border) {
    constexpr std::int64_t first = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t last = std::numeric_limits<std::int64_t>::max();
    const auto low =
        store.ask(mailstore::candidateQuery({}, true, {.first = first, .last = border}), 4 * mostSteps);
    const auto high =
        store.ask(mailstore::candidateQuery({}, true, {.first = border + 1, .last = last}), 4 * mostSteps);
    require(low && high);
    Listing joined = *low;
    joined.insert(joined.end(), high->begin(), high->end());
    std::ranges::sort(joined, isListedBefore);
    const bool hasOtherDates = std::ranges::any_of(whole, [](const Listed& each) { return each.date == -1; });
    require(joined.size() == whole.size() && (hasOtherDates || joined == whole));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Store store;
    const std::string_view input = fuzz::textOf(data, size);
    store.replaceIndex(fuzz::damagedDatabase(store.sound(), input));
    store.askForMailboxes();
    const auto whole = store.ask(mailstore::candidateQuery({}, true), mostSteps);
    const auto without = store.ask(mailstore::candidateQuery({}, false), mostSteps);
    const bool isSound = store.isSound();
    if (whole && isSound) checkPieces(store, *whole, static_cast<std::int64_t>(size % 48));
    if (!isForShell(input)) return 0;
    const auto byShell = store.countByShell();
    if (byShell && isSound && (whole || without))
        require((whole && byShell == whole->size()) || (without && byShell == without->size()));
    return 0;
}
