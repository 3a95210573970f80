#include "records/mail_account.h"

#include "records/texts/account_texts.h"

namespace corvane {

std::string MailAccount::distinguishedLabel() const {
    std::string label = linkedAccountEmail.value_or(emailAddress);
    if (isLocalStore) label += localStoreTitle;
    return label;
}

} // namespace corvane
