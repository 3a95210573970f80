#include "mailstore/accounts/account_duplication.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include <fmt/format.h>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/index/index_sql.h"
#include "mailstore/reader_logs.h"
#include "mailstore/sqlite/shell_queries.h"

namespace corvane::mailstore {

namespace {

constexpr double leastOverlap = 0.7;

using MessageIDs = std::vector<std::int64_t>; // ascending, each once

MessageIDs messageIDsOf(const MailStoreContext& context, const MailAccount& account,
                        const std::string& index) {
    return runIntSetQuery(
        context,
        fmt::format("SELECT DISTINCT m.message_id FROM messages m\n"
                    "JOIN mailboxes mb ON mb.ROWID = m.mailbox\n"
                    "WHERE mb.url LIKE '%{}%' AND m.message_id IS NOT NULL AND m.message_id != 0;",
                    quotedText(withoutImapScheme(account.urlPrefix))),
        index);
}

// The share of `inner`, which isn't empty, that is in `outer` too.
double overlapOf(const MessageIDs& inner, const MessageIDs& outer) {
    MessageIDs shared;
    std::ranges::set_intersection(inner, outer, std::back_inserter(shared));
    return static_cast<double>(shared.size()) / static_cast<double>(inner.size());
}

std::map<std::string, std::string> duplicationNotes(const std::vector<MailAccount>& accounts,
                                                    const std::vector<MessageIDs>& messages) {
    std::map<std::string, std::string> notes;
    for (std::size_t a = 0; a < accounts.size(); ++a) {
        double highest = 0;
        for (std::size_t b = 0; b < accounts.size(); ++b) {
            if (a == b || messages[a].empty() || messages[b].size() < messages[a].size()) continue;
            const double overlap = overlapOf(messages[a], messages[b]);
            accountsLog(fmt::format("重复检测: {} ⊂ {} {:.3f}", accounts[a].distinguishedLabel(),
                                    accounts[b].distinguishedLabel(), overlap));
            if (overlap < leastOverlap || overlap <= highest) continue;
            highest = overlap;
            notes[accounts[a].urlPrefix] = fmt::format("与「{}」高度重复（{:.0f}%），很可能是冗余副本",
                                                       accounts[b].distinguishedLabel(), overlap * 100);
        }
    }
    return notes;
}

} // namespace

std::map<std::string, std::string> analyzeDuplication(const MailStoreContext& context,
                                                      const std::vector<MailAccount>& accounts,
                                                      const std::string& rootPath) {
    if (accounts.size() < 2) return {};
    const std::string index = envelopeIndexPath(rootPath);
    std::vector<MessageIDs> messages;
    messages.reserve(accounts.size());
    for (const MailAccount& account : accounts) messages.push_back(messageIDsOf(context, account, index));
    return duplicationNotes(accounts, messages);
}

} // namespace corvane::mailstore
