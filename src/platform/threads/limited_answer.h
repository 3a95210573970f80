// What one blocking job answers, unless the place that it asks hangs: the caller waits no longer than the
// limit of its steps. Any thread.
#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

#include "platform/threads/time_limited_worker.h"

namespace corvane::platform {

// Absent when a step of the job took longer than `limit`, after a stop, and when the job threw. The job owns
// all that it touches, and goes on with nobody listening once it is given up.
template <class Answer>
std::optional<Answer> limitedAnswer(std::chrono::nanoseconds limit, std::function<Answer(JobLimit&)> job,
                                    const std::stop_token& stop = {}) {
    const auto answer = std::make_shared<std::optional<Answer>>();
    TimeLimitedWorker worker;
    const bool hasEnded = worker.run(
        limit,
        [answer, job = std::move(job)](JobLimit& steps) {
            try {
                *answer = job(steps);
            } catch (const std::exception&) { // no memory
                answer->reset();
            }
        },
        stop);
    return hasEnded ? std::move(*answer) : std::nullopt;
}

} // namespace corvane::platform
