#include "listing/deletion/found_by_mail.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "listing/account_titles.h"
#include "mailstore/index/downloads_by_year.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

// By the name of its file; absent for a file that is no row's.
std::optional<std::int64_t> rowIDOf(const FileURL& url) {
    const std::string_view name = url.lastPathComponent();
    std::int64_t row = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), row);
    if (error != std::errc() || std::string_view(end, name.data() + name.size()) != ".emlx")
        return std::nullopt;
    return row;
}

} // namespace

const FoundByMail::Elsewhere* FoundByMail::find(const FileURL& url) const {
    const auto row = rowIDOf(url);
    if (!row) return nullptr;
    const auto found = std::ranges::lower_bound(elsewhere, *row, {}, &Elsewhere::rowID);
    return found != elsewhere.end() && found->rowID == *row ? &*found : nullptr;
}

FoundByMailMaker::FoundByMailMaker(SharedMessageList messages, AccountsInMail inMail) {
    const auto add = [&](const FileURL& url, std::size_t message) {
        if (const auto row = rowIDOf(url)) listed_.push_back({*row, static_cast<std::uint32_t>(message)});
    };
    listed_.reserve(messages->size());
    for (std::size_t at = 0; at < messages->size(); ++at) {
        const MailMessageRecord& message = (*messages)[at];
        add(message.fileURL, at);
        if (!message.relatedMessageFileURLs) continue;
        for (const FileURL& url : *message.relatedMessageFileURLs) add(url, at);
    }
    std::ranges::sort(listed_);
    found_.messages = std::move(messages);
    found_.inMail = std::move(inMail);
}

void FoundByMailMaker::add(const std::string& accountPrefix, const mailstore::DownloadsByYear& downloads) {
    const auto account = static_cast<std::uint32_t>(found_.accounts.size());
    found_.accounts.push_back(accountPrefix);
    found_.serverAlone[accountPrefix] = downloads.aloneByReceipt;
    found_.partial[accountPrefix] = downloads.partialByReceipt;
    CountByYear& unlisted = found_.unlisted[accountPrefix];
    for (const mailstore::StoredRow& row : downloads.storedRows) addStored(account, row, unlisted);
}

void FoundByMailMaker::addStored(std::uint32_t account, const mailstore::StoredRow& row,
                                 CountByYear& unlisted) {
    const auto listed = std::ranges::lower_bound(listed_, row.rowID, {}, &ListedRow::rowID);
    if (listed == listed_.end() || listed->rowID != row.rowID) {
        ++unlisted[row.receivedYear];
        return;
    }
    const MailMessageRecord& message = (*found_.messages)[listed->message];
    const bool isInItsAccount = accountFilterKey(message) == found_.accounts[account];
    const bool isInItsYear = message.date && localYear(*message.date) == row.receivedYear;
    // Statistics leave a message whose shown copy is in trash or junk out with all of its copies.
    if (isInItsAccount && isInItsYear && !trashOrJunk_.holds(message.mailbox)) return;
    found_.elsewhere.push_back({row.rowID, account, static_cast<std::int32_t>(row.receivedYear)});
}

SharedFoundByMail FoundByMailMaker::result() && {
    std::ranges::sort(found_.elsewhere, {}, &FoundByMail::Elsewhere::rowID);
    return std::make_shared<const FoundByMail>(std::move(found_));
}

} // namespace corvane
