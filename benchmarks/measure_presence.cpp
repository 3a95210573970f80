// The comparison of archived mail with the live index, as a person has it made who presses the button:
//
//   measure_presence make COUNT HOME              a home whose index has most of that mail, in another order
//   measure_presence wall|processor COUNT HOME    seconds, the shell's included where they are the
//   processor's
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <QCoreApplication>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/resource.h>

#include "library_samples.h"
#include "model/library/presence/presence_flow.h"
#include "processor_time.h"

namespace {

using namespace corvane;
using Clock = std::chrono::steady_clock;

constexpr const char* schema = R"(
CREATE TABLE messages (ROWID INTEGER PRIMARY KEY AUTOINCREMENT, message_id INTEGER, sender INTEGER,
  subject_prefix TEXT, subject INTEGER, date_sent INTEGER, date_received INTEGER, mailbox INTEGER NOT NULL,
  flags INTEGER NOT NULL DEFAULT 0, size INTEGER NOT NULL DEFAULT 0, conversation_id INTEGER, display_date INTEGER);
CREATE TABLE mailboxes (ROWID INTEGER PRIMARY KEY, url TEXT UNIQUE);
CREATE TABLE message_global_data (ROWID INTEGER PRIMARY KEY, message_id INTEGER, download_state INTEGER,
  message_id_header TEXT);
CREATE INDEX messages_message_id_index ON messages(message_id);
CREATE INDEX messages_mailbox_index ON messages(mailbox, date_received);
CREATE INDEX message_global_data_message_id_index ON message_global_data(message_id);
INSERT INTO mailboxes VALUES (1, 'imap://00000000-0000-0000-0000-000000000001/INBOX'),
  (2, 'imap://00000000-0000-0000-0000-000000000001/Trash');
BEGIN;
)";

std::string headerOf(const ArchivedEntry& entry, std::size_t number) {
    if (number % 10 == 0) return fmt::format("<{}@elsewhere.example.org>", number);
    return fmt::format("<{}>", entry.record.messageIdentifier->view());
}

// Every twentieth message lies in the trash, and every tenth isn't archived.
void makeIndex(std::size_t count, const std::string& home) {
    const std::string folder = home + "/Library/Mail/V10/MailData";
    std::filesystem::create_directories(folder);
    auto entries = bench::makeArchivedEntries(count);
    std::shuffle(entries.begin(), entries.end(), std::mt19937(7));
    sqlite3* database = nullptr;
    sqlite3_open((folder + "/Envelope Index").c_str(), &database);
    sqlite3_exec(database, schema, nullptr, nullptr, nullptr);
    for (std::size_t at = 0; at < entries.size(); ++at) {
        const std::string sql = fmt::format(
            "INSERT INTO messages (message_id, sender, subject, date_sent, date_received, mailbox, size,"
            " conversation_id, display_date) VALUES ({0}, 1, 1, {1}, {1}, {2}, 5000, {0}, {1});"
            "INSERT INTO message_global_data (message_id, message_id_header) VALUES ({0}, '{3}');",
            1000 + at, 1'500'000'000 + at, at % 20 == 0 ? 2 : 1, headerOf(entries[at], at));
        sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr);
    }
    sqlite3_exec(database, "COMMIT;", nullptr, nullptr, nullptr);
    sqlite3_close(database);
}

void waitUntilIdle(TaskRunner& tasks) {
    do {
        QCoreApplication::processEvents(tasks.isIdle() ? QEventLoop::AllEvents
                                                       : QEventLoop::WaitForMoreEvents);
        if (tasks.isIdle()) QCoreApplication::processEvents();
    } while (!tasks.isIdle());
}

// As the library has them: one archive after the other, and the mail of each shares its root.
SharedEntryList makeEntries(std::size_t count) {
    auto entries = bench::makeArchivedEntries(count);
    TextInterner texts;
    for (ArchivedEntry& entry : entries) entry.locationRootPath = texts(entry.locationRootPath);
    std::ranges::stable_sort(entries, {}, &ArchivedEntry::locationRootPath);
    return std::make_shared<const std::vector<ArchivedEntry>>(std::move(entries));
}

bool measure(bool isWall, std::size_t count, const std::string& home) {
    const auto platform = platform::makePlatform(home);
    ModelContext context(*platform);
    PresenceFlow flow(context);
    flow.setEntries(makeEntries(count));
    waitUntilIdle(context.tasks);
    const auto begin = Clock::now();
    const double used = processorSeconds(RUSAGE_SELF);
    flow.refreshArchivedOriginalPresenceIfNeeded(true);
    waitUntilIdle(context.tasks);
    const double wall = std::chrono::duration<double>(Clock::now() - begin).count();
    const double processor = processorSeconds(RUSAGE_SELF) - used + processorSeconds(RUSAGE_CHILDREN);
    fmt::print("{:.6f}\n", isWall ? wall : processor);
    const auto& statuses = flow.presence()->statuses;
    using enum ArchivedOriginalPresenceStatus;
    return std::ranges::count(statuses, present) > 0 && std::ranges::count(statuses, missing) > 0;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const std::string mode = argc == 4 ? argv[1] : "";
    const std::size_t count = argc == 4 ? std::stoul(argv[2]) : 0;
    if (mode == "make") makeIndex(count, argv[3]);
    if (mode == "wall" || mode == "processor") return measure(mode == "wall", count, argv[3]) ? 0 : 1;
    return mode == "make" ? 0 : 2;
}
