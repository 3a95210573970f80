// The filling of the bodies' indexes, which `index` asks for and `archive` does behind its run.
#pragma once

#include <cstdint>

#include "cli/session.h"
#include "model/library/body_texts.h"

namespace corvane::cli {

// Goes on to the end, with the progress on standard error; an interrupt ends it after the batch that is being
// written. Returns the number of messages handled.
std::int64_t fillBodyIndex(Session& session, BodyIndexRequest request);

} // namespace corvane::cli
