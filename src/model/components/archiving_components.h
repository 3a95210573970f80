// What the model does to bring mail into archives and to prove that it is there: the destination, candidates
// and ticks, runs, proofs, and the readings these rest on. Main thread. Each component can be used by itself;
// the reactions that join them are the model's.
#pragma once

#include <functional>

#include "model/archiving/archive_rebuild_flow.h"
#include "model/archiving/archive_run_flow.h"
#include "model/archiving/destinations.h"
#include "model/archiving/last_failures.h"
#include "model/archiving/place_jobs.h"
#include "model/archiving/proof/kept_readings.h"
#include "model/archiving/proof/proof_flow.h"
#include "model/archiving/selection/archive_candidates.h"
#include "model/archiving/selection/archive_ticks.h"
#include "model/archiving/selection/set_aside.h"
#include "model/components/mail_components.h"
#include "model/model_context.h"

namespace corvane {

struct ArchivingComponents {
    using ProofProvider = std::function<ProofInputs()>;

    // `mail` must outlive it. `proofInputs` is asked at the start of each proof.
    ArchivingComponents(ModelContext& context, const MailComponents& mail, ProofProvider proofInputs);

    ArchiveDestinations destinations;
    KeptReadings readings;
    SetAside setAside;
    LastFailures lastFailures;
    ArchiveCandidates candidates;
    ArchiveTicks ticks;
    ArchiveRunFlow archiveRun;
    ProofFlow proof;
    ArchiveRebuildFlow rebuild;
    PlaceJobs placeJobs;
};

} // namespace corvane
