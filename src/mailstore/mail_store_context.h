// What every read of Mail's store stands on. A value of references, made once by the model; whatever it
// refers to outlives all reads.
#pragma once

#include <chrono>

#include "platform/platform.h"
#include "records/stores/app_support.h"

namespace corvane {

struct MailStoreContext {
    const platform::Platform& platform;
    const CorvaneAppSupport& support;
    // How long a time-limited query may take: Mail may hold the index locked.
    std::chrono::milliseconds queryTimeLimit{5000};
    // Nobody waits for these reads: their processes yield to those of a scan.
    bool isUpkeep = false;
};

} // namespace corvane
