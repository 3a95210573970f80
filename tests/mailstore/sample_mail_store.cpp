#include "mailstore/sample_mail_store.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <stdexcept>

#include <fmt/format.h>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/index/index_sql.h"

namespace corvane::testing {

namespace fs = std::filesystem;

namespace {

constexpr const char* schema = R"(
CREATE TABLE mailboxes(url TEXT);
CREATE TABLE messages(message_id INTEGER, mailbox INTEGER, subject INTEGER, subject_prefix TEXT, sender INTEGER,
                      display_date INTEGER, date_received INTEGER, date_sent INTEGER, size INTEGER);
CREATE TABLE subjects(subject TEXT);
CREATE TABLE addresses(address TEXT, comment TEXT);
CREATE TABLE recipients(message INTEGER, address INTEGER, type INTEGER, position INTEGER);
CREATE TABLE attachments(message INTEGER, name TEXT);
)";

} // namespace

SampleMailStore::SampleMailStore(IdentifierColumn column)
  : hasIdentifierColumn_(column == IdentifierColumn::present) {
    fs::create_directories(fs::path(indexPath()).parent_path());
    reopen();
    execute(schema);
    execute(hasIdentifierColumn_
                ? "CREATE TABLE message_global_data(message_id INTEGER, message_id_header TEXT)"
                : "CREATE TABLE message_global_data(message_id INTEGER)");
}

SampleMailStore::~SampleMailStore() {
    close();
}

void SampleMailStore::close() {
    sqlite3_close(database_);
    database_ = nullptr;
}

void SampleMailStore::reopen() {
    if (sqlite3_open(indexPath().c_str(), &database_) != SQLITE_OK) throw std::runtime_error("open");
}

void SampleMailStore::execute(const std::string& sql) {
    if (sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(fmt::format("{}: {}", sqlite3_errmsg(database_), sql));
}

std::int64_t SampleMailStore::addMailbox(const std::string& url, const std::string& dataFolder) {
    execute(fmt::format("INSERT INTO mailboxes VALUES('{}')", mailstore::quotedText(url)));
    const std::int64_t id = sqlite3_last_insert_rowid(database_);
    if (!dataFolder.empty()) dataFolders_[id] = mailPath(dataFolder);
    if (!dataFolder.empty()) fs::create_directories(mailPath(dataFolder));
    return id;
}

std::int64_t SampleMailStore::addressID(const std::string& name, const std::string& address) {
    execute(fmt::format("INSERT INTO addresses VALUES('{}', '{}')", mailstore::quotedText(address),
                        mailstore::quotedText(name)));
    return sqlite3_last_insert_rowid(database_);
}

void SampleMailStore::add(const SampleMessage& message) {
    execute(fmt::format("INSERT INTO subjects VALUES('{}')", mailstore::quotedText(message.subject)));
    const auto subject = sqlite3_last_insert_rowid(database_);
    const auto sender = addressID(message.senderName, message.senderAddress);
    execute(fmt::format(
        "INSERT INTO messages(rowid, message_id, mailbox, subject, subject_prefix, sender, "
        "display_date, date_received, date_sent, size) VALUES({}, {}, {}, {}, '', {}, 0, {}, 0, {})",
        message.rowID, message.messageID, message.mailbox, subject, sender, message.date, message.size));
    int position = 0;
    for (const auto& recipient : message.recipients)
        execute(fmt::format("INSERT INTO recipients VALUES({}, {}, 0, {})", message.rowID,
                            addressID("", recipient), position++));
    for (const auto& name : message.attachments)
        execute(fmt::format("INSERT INTO attachments VALUES({}, '{}')", message.rowID,
                            mailstore::quotedText(name)));
    if (hasIdentifierColumn_ && !message.header.empty())
        execute(fmt::format("INSERT INTO message_global_data VALUES({}, '{}')", message.messageID,
                            mailstore::quotedText(message.header)));
    const auto folder = dataFolders_.find(message.mailbox);
    if (!message.hasFile || folder == dataFolders_.end()) return;
    const std::string path = mailstore::messagesFolder(folder->second, message.rowID);
    home.write(fs::relative(path, home.path()).string() + fmt::format("/{}.emlx", message.rowID), "5\nhello");
}

SampleMailStore::Tree SampleMailStore::tree() const {
    Tree entries;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const auto time = entry.last_write_time().time_since_epoch().count();
        entries[entry.path().string()] =
            fmt::format("{} {}", time, entry.is_regular_file() ? readWhole(entry.path().string()) : "");
    }
    return entries;
}

std::vector<std::string> SampleMailStore::changesSince(const Tree& before) const {
    Tree changed;
    const Tree after = tree();
    std::ranges::set_symmetric_difference(before, after, std::inserter(changed, changed.end()));
    std::vector<std::string> paths;
    for (const auto& entry : changed) paths.push_back(entry.first);
    return paths;
}

std::vector<std::string> SampleMailStore::leftovers() const {
    return leftoversIn(platform);
}

ScannedStore::ScannedStore(IdentifierColumn column)
  : SampleMailStore(column) {
    addMailbox(account + "/INBOX", inbox);
}

MailDataScanner ScannedStore::scanner() const {
    return {{.context = context,
             .rootPath = root,
             .maximumYear = {},
             .accountURLPrefixes = {},
             .accountNamesByPrefix = {{account, "me@example.org"}}}};
}

std::vector<ScannedStore::Batch> ScannedStore::scan() {
    close();
    return scan(scanner());
}

std::vector<ScannedStore::Batch> ScannedStore::scan(const MailDataScanner& scanner) {
    std::vector<Batch> batches;
    scanner.scanBatches([&](Batch&& batch) { batches.push_back(std::move(batch)); });
    return batches;
}

MessageList recordsOf(const std::vector<mailstore::RecordBatch>& batches) {
    MessageList all;
    for (const auto& batch : batches) all.insert(all.end(), batch.records.begin(), batch.records.end());
    return all;
}

std::vector<std::string> subjectsOf(const std::vector<mailstore::RecordBatch>& batches) {
    std::vector<std::string> all;
    for (const auto& record : recordsOf(batches)) all.push_back(record.subject.str());
    return all;
}

LockingWriter::LockingWriter(const std::string& databasePath)
  : shell_({.executable = "/usr/bin/sqlite3",
            .arguments = {databasePath},
            .standardInput = input_.readEnd.get(),
            .standardOutput = output_.writeEnd.get(),
            .environment = {}}) {
    platform::writeToPipe(input_.writeEnd.get(), "BEGIN EXCLUSIVE;\n.print locked\n");
    char byte = 0;
    if (::read(output_.readEnd.get(), &byte, 1) != 1) throw std::runtime_error("no lock");
}

} // namespace corvane::testing
