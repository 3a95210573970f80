#include "records/mail_account.h"

namespace corvane {

std::string MailAccount::distinguishedLabel() const {
    std::string label = linkedAccountEmail.value_or(emailAddress);
    if (isLocalStore) label += "（Mail 本机归档文件夹）";
    return label;
}

} // namespace corvane
