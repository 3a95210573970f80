// Whether jobs that a TimeLimitedWorker has given up are still at work somewhere in the process. Thread-safe.
#pragma once

namespace corvane::platform {

bool hasAbandonedJobs() noexcept;

} // namespace corvane::platform
