// Of which day the proofs are that rest on archives which aren't connected now, or on files that are in a
// cloud only: a command that rests on them says so.
#pragma once

#include <functional>

#include "cli/console/output.h"
#include "cli/session.h"
#include "listing/proof/away_proofs.h"

namespace corvane::cli {

// Of the listed messages that belong to it; all without a question. The last scan must have been restored.
AwayProofs awayProofsOf(Session& session,
                        const std::function<bool(const MailMessageRecord&)>& isLookedAt = {});

// The member "awayProofs"; none where all of it is there.
void writeAwayProofs(JsonDocument& document, const AwayProofs& away);

// A line; none where all of it is there.
void printAwayProofs(const AwayProofs& away);

} // namespace corvane::cli
