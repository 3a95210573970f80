// The Mail store of this home, as background jobs carry it.
#pragma once

#include <string>

#include "mailstore/mail_store_context.h"
#include "model/model_context.h"

namespace corvane {

struct MailStore {
    MailStoreContext context;
    std::string rootPath;
};

MailStore mailStoreOf(const ModelContext& context);

// The same for reads that nobody waits for.
MailStore upkeepMailStoreOf(const ModelContext& context);

} // namespace corvane
