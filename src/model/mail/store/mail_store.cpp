#include "model/mail/store/mail_store.h"

namespace corvane {

MailStore mailStoreOf(const ModelContext& context) {
    return {{context.platform, context.support}, context.mailRootPath};
}

MailStore upkeepMailStoreOf(const ModelContext& context) {
    MailStore store = mailStoreOf(context);
    store.context.isUpkeep = true;
    return store;
}

} // namespace corvane
