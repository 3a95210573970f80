// What Mail's own search finds by an account and the years of receipt, beside what the list of messages says:
// the list goes by the shown date and by one account a message, while the user deletes what that search has
// found. Immutable once made, shared between threads.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "listing/deletion/deletion_safety.h"
#include "listing/trash_or_junk.h"
#include "records/account_in_mail.h"
#include "records/mail_message_record.h"

namespace corvane {

namespace mailstore {
struct StoredRow;
struct DownloadsByYear;
} // namespace mailstore

struct FoundByMail {
    SharedMessageList messages; // what was listed when it was made
    AccountsInMail inMail;      // all that Mail has at that moment, the ones below among them

    // By account and year of receipt.
    CountByAccountAndYear serverAlone; // messages of which a copy isn't on this machine
    CountByAccountAndYear partial;     // of which Mail holds a part
    CountByAccountAndYear unlisted;    // that are here, and that the list doesn't have

    // Copies of listed messages that are found in another account or year than the message has in the list,
    // or of which the list shows the copy in trash or junk, in the order of their rows. Each row stands here
    // once.
    struct Elsewhere {
        std::int64_t rowID = 0;
        std::uint32_t account = 0; // in `accounts`
        std::int32_t year = 0;
    };

    std::vector<std::string> accounts;
    std::vector<Elsewhere> elsewhere;

    // Calls `visit(account, year)` for each copy of the message that is found elsewhere.
    template <class Visit>
    void visitElsewhere(const MailMessageRecord& message, const Visit& visit) const {
        if (elsewhere.empty()) return;
        visitRow(message.fileURL, visit);
        if (!message.relatedMessageFileURLs) return;
        for (const FileURL& url : *message.relatedMessageFileURLs) {
            if (!(url == message.fileURL)) visitRow(url, visit);
        }
    }

  private:
    template <class Visit>
    void visitRow(const FileURL& url, const Visit& visit) const {
        if (const Elsewhere* const found = find(url)) visit(accounts[found->account], found->year);
    }

    // Null for a row that the list has where it is found.
    [[nodiscard]] const Elsewhere* find(const FileURL& url) const;
};

using SharedFoundByMail = std::shared_ptr<const FoundByMail>;

// Makes it account by account. Linear in the messages and rows but for a look-up.
class FoundByMailMaker {
  public:
    // `messages` isn't null.
    FoundByMailMaker(SharedMessageList messages, AccountsInMail inMail);

    // `downloads` are those of the account.
    void add(const std::string& accountPrefix, const mailstore::DownloadsByYear& downloads);

    [[nodiscard]] SharedFoundByMail result() &&;

  private:
    struct ListedRow {
        std::int64_t rowID = 0;
        std::uint32_t message = 0;

        friend auto operator<=>(const ListedRow&, const ListedRow&) = default;
    };

    void addStored(std::uint32_t account, const mailstore::StoredRow& row, CountByYear& unlisted);

    FoundByMail found_;
    TrashOrJunk trashOrJunk_;
    std::vector<ListedRow> listed_; // in their order
};

} // namespace corvane
