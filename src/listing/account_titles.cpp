#include "listing/account_titles.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "text/trim.h"

namespace corvane {

std::string_view accountFilterKey(const MailMessageRecord& message) {
    return message.accountIdentifier ? message.accountIdentifier->view()
                                     : std::string_view(unclassifiedAccountKey);
}

std::string_view accountGroupKey(const MailMessageRecord& message) {
    const std::string_view key = accountFilterKey(message);
    return key.empty() ? std::string_view(unclassifiedAccountKey) : key;
}

const MailAccount* findAccount(std::string_view key, const std::vector<MailAccount>& accounts) {
    const auto known = std::ranges::find(accounts, key, &MailAccount::urlPrefix);
    return known == accounts.end() ? nullptr : &*known;
}

std::string accountTitle(std::string_view key, const std::vector<MailAccount>& accounts,
                         std::string_view nameInMail) {
    std::string title;
    if (const MailAccount* account = findAccount(key, accounts)) {
        title = account->distinguishedLabel();
    } else if (key == unclassifiedAccountKey) {
        title = "未识别邮箱";
    } else {
        title = text::trimWhitespaceAndNewlines(nameInMail);
    }
    return title.empty() ? std::string(key) : title;
}

std::string accountTitle(std::string_view key, const std::vector<MailAccount>& accounts,
                         const MailMessageRecord& message) {
    return accountTitle(key, accounts,
                        message.accountName ? message.accountName->view() : std::string_view());
}

} // namespace corvane
