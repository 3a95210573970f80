// A proof that a command waits for.
#pragma once

#include "cli/session.h"
#include "model/archiving/proof/proof_job.h"

namespace corvane::cli {

// Reads what isn't proven yet of the scope, with the progress on standard error, until it is done or
// interrupted; places that didn't answer are named there. The last scan must have been restored.
void proveToEnd(Session& session, const ProofScope& scope);

} // namespace corvane::cli
