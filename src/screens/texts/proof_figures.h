// How far a comparison of originals with their archived copies is. Any thread.
#pragma once

#include <optional>

#include <QString>

#include "model/archiving/proof/proof_job.h"

namespace corvane::screens {

// 0 to 1; 0 while none runs.
double proofFraction(const std::optional<ProofProgress>& progress);

// "12 / 340", of messages; empty while none runs.
QString proofCount(const std::optional<ProofProgress>& progress);

} // namespace corvane::screens
