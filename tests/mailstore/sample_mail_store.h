// A small Mail store made through SQLite itself.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <sqlite3.h>

#include "mailstore/mail_store_context.h"
#include "mailstore/scan/mail_data_scanner.h"
#include "platform/processes/child_process.h"
#include "support/scripted_platform.h"
#include "support/temporary_home.h"

namespace corvane::testing {

inline constexpr const char* firstAccount = "AAAAAAAA-1111-2222-3333-444444444444";
inline constexpr const char* secondAccount = "BBBBBBBB-1111-2222-3333-444444444444";
inline constexpr const char* localAccount = "CCCCCCCC-1111-2222-3333-444444444444";

// 2024-01-01 00:00:00 UTC.
inline constexpr std::int64_t startOf2024 = 1'704'067'200;

struct SampleMessage {
    std::int64_t rowID = 0;
    std::int64_t mailbox = 1;
    std::int64_t messageID = 0;
    std::string subject = "Subject";
    std::string senderName{};
    std::string senderAddress = "sender@example.org";
    std::vector<std::string> recipients{};
    std::int64_t date = startOf2024;
    std::int64_t size = 10;
    std::string header{};
    std::vector<std::string> attachments{};
    bool hasFile = true;
};

class SampleMailStore {
  public:
    enum class IdentifierColumn { present, missing };

    explicit SampleMailStore(IdentifierColumn column = IdentifierColumn::present);
    SampleMailStore(const SampleMailStore&) = delete;
    SampleMailStore& operator=(const SampleMailStore&) = delete;
    ~SampleMailStore();

    // Adds the mailbox with its folder; returns its ROWID. Without `dataFolder` it has none.
    std::int64_t addMailbox(const std::string& url, const std::string& dataFolder);
    void add(const SampleMessage& message);
    void execute(const std::string& sql);

    // Finishes writing; readers may follow.
    void close();
    void reopen();

    [[nodiscard]] std::string indexPath() const {
        return home.at("Library/Mail/V10/MailData/Envelope Index");
    }

    [[nodiscard]] std::string mailPath(const std::string& below) const {
        return home.at("Library/Mail/V10/" + below);
    }

    // Every entry below the Mail folder with its time and content.
    using Tree = std::map<std::string, std::string>;
    [[nodiscard]] Tree tree() const;

    // Paths of what came, went or changed since then.
    [[nodiscard]] std::vector<std::string> changesSince(const Tree& before) const;

    // Names of what is left in the temporary folder.
    [[nodiscard]] std::vector<std::string> leftovers() const;

    TemporaryHome home;
    ScriptedPlatform platform{home};
    CorvaneAppSupport support{platform};
    MailStoreContext context{platform, support};
    std::string root = home.at("Library/Mail");

  private:
    std::int64_t addressID(const std::string& name, const std::string& address);

    sqlite3* database_ = nullptr;
    bool hasIdentifierColumn_;
    std::map<std::int64_t, std::string> dataFolders_;
};

// A store of one account with an inbox, mailbox 1, and scans of it.
struct ScannedStore : SampleMailStore {
    using Batch = mailstore::RecordBatch;

    explicit ScannedStore(IdentifierColumn column = IdentifierColumn::present);

    [[nodiscard]] MailDataScanner scanner() const;

    // Of this store as it is then; finishes writing first.
    [[nodiscard]] std::vector<Batch> scan();
    [[nodiscard]] static std::vector<Batch> scan(const MailDataScanner& scanner);

    static inline const std::string account = std::string("imap://") + firstAccount;
    static inline const std::string inbox = std::string(firstAccount) + "/INBOX.mbox/X/Data/";
};

[[nodiscard]] MessageList recordsOf(const std::vector<mailstore::RecordBatch>& batches);
[[nodiscard]] std::vector<std::string> subjectsOf(const std::vector<mailstore::RecordBatch>& batches);

// Another process, as Mail is, that holds a database locked for writing.
class LockingWriter {
  public:
    explicit LockingWriter(const std::string& databasePath);

  private:
    platform::Pipe input_ = platform::makePipe();
    platform::Pipe output_ = platform::makePipe();
    platform::ChildProcess shell_;
};

} // namespace corvane::testing
