// What the model knows of Apple Mail: whether it can be read, its accounts, the last scan, and the list of it
// that the user sees. Main thread. Each component can be used by itself; the reactions that join them are the
// model's.
#pragma once

#include "model/mail/account_directory.h"
#include "model/mail/index_counts.h"
#include "model/mail/mail_diagnostics.h"
#include "model/mail/messages/message_catalog.h"
#include "model/mail/messages/model_filters.h"
#include "model/mail/messages/preview_refresh.h"
#include "model/mail/messages/visible_messages.h"
#include "model/mail/scan/scan_flow.h"
#include "model/mail/space_usage_flow.h"
#include "model/mail/store/mail_access.h"
#include "model/model_context.h"

namespace corvane {

struct MailComponents {
    // `availability` is asked at the start of each availability run.
    MailComponents(ModelContext& context, MessageCatalog::InputsProvider availability);

    FullDiskAccess diskAccess;
    ModelFilters filters;
    AccountDirectory accounts;
    MessageCatalog catalog;
    VisibleMessages visible;
    IndexCounts counts;
    SpaceUsageFlow space;
    ScanFlow scanFlow;
    PreviewRefresh previews;
    MailDiagnostics diagnostics;
};

} // namespace corvane
