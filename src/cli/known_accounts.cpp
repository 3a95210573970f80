#include "cli/known_accounts.h"

#include <cstddef>
#include <ranges>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "listing/account_titles.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

constexpr std::size_t mostNamed = 20;

std::set<std::string> accountsOfMail(Session& session) {
    std::set<std::string> known;
    for (const MailAccount& account : session.model().mail().accounts.availableAccounts())
        known.insert(account.urlPrefix);
    for (const MailMessageRecord& message : *session.model().mail().catalog.messages()) {
        for (const std::string_view key : {accountFilterKey(message), accountGroupKey(message)}) {
            if (!known.contains(std::string(key))) known.emplace(key);
        }
    }
    return known;
}

} // namespace

std::string unknownNameText(std::string_view what, const std::string& asked,
                            const std::set<std::string>& known) {
    const auto first = known | std::views::take(mostNamed);
    return fmt::format("{}：{}。有的是：{}{}", what, asked, fmt::join(first.begin(), first.end(), "、"),
                       known.size() > mostNamed ? "等" : "");
}

void requireAccounts(Session& session, const std::vector<std::string>& asked, bool json) {
    if (asked.empty()) return;
    const std::set<std::string> known = accountsOfMail(session);
    if (known.empty()) return;
    for (const std::string& account : asked) {
        if (known.contains(account)) continue;
        const std::string text = unknownNameText("Mail 里没有这个账户", account, known);
        if (!json) throw CommandFailure(text);
        messageLine(text);
    }
}

} // namespace corvane::cli
