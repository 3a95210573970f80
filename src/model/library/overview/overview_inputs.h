// What the overview of archived mail is made of at this moment, gathered from those who know. Main thread.
#pragma once

#include "listing/proof/proof_sources.h"
#include "model/library/library_index_flow.h"
#include "model/library/overview/overview_state.h"
#include "model/library/presence/presence_flow.h"
#include "model/mail/account_directory.h"
#include "model/mail/index_counts.h"
#include "model/mail/messages/message_catalog.h"

namespace corvane {

struct OverviewSources {
    const MessageCatalog& catalog;
    const LibraryIndexFlow& libraryIndex;
    const PresenceFlow& presence;
    const IndexCounts& counts;
    const AccountDirectory& accounts;
};

// `proofs` is what outcomes follow from now. The inputs are ready only when all that they name is known and
// belongs together: nothing is said of originals while a part of it is still being looked at.
OverviewInputs overviewInputs(const OverviewSources& sources, const ProofInputs& proofs);

} // namespace corvane
