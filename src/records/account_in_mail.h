// An account as Mail shows it at this moment, whatever the accounts that were read before say of it.
#pragma once

#include <string>
#include <vector>

namespace corvane {

struct AccountInMail {
    std::string urlPrefix; // the account's key, as in `MailAccount`
    std::string shownName; // in Mail's own menus; empty where nothing tells it
    std::string address;   // as the system has it; empty where nothing tells it

    friend bool operator==(const AccountInMail&, const AccountInMail&) = default;
};

struct AccountsInMail {
    std::vector<AccountInMail> accounts; // that have mail, by their keys
    // False where the system has names and nobody could read them: an empty name then says nothing.
    bool areNamesKnown = true;

    friend bool operator==(const AccountsInMail&, const AccountsInMail&) = default;
};

} // namespace corvane
