// What every read of Mail's store stands on. A value of references, made once by the model; whatever it
// refers to outlives all reads.
#pragma once

#include <chrono>
#include <stop_token>

#include "platform/platform.h"
#include "records/stores/app_support.h"

namespace corvane {

struct MailStoreContext {
    const platform::Platform& platform;
    const CorvaneAppSupport& support;
    // How long a quick query may take, and a piece of the candidate query: Mail may hold the index locked.
    std::chrono::milliseconds queryTimeLimit{5000};
    // How long any other query may take.
    std::chrono::milliseconds longQueryTimeLimit{60'000};
    // Nobody waits for these reads: their processes yield to those of a scan.
    bool isUpkeep = false;
    // Ends every query soon after it is requested; a query then has no answer.
    std::stop_token stop{};
};

} // namespace corvane
