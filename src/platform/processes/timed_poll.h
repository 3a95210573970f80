// Waiting for descriptors until a deadline or a requested stop, for the files of this folder.
#pragma once

#include <chrono>
#include <optional>
#include <stop_token>
#include <utility>

#include "platform/processes/child_process.h"

namespace corvane::platform {

// Milliseconds for poll(2), rounded up so that a wait never ends just before its deadline.
inline int pollTimeout(std::chrono::steady_clock::time_point deadline) {
    const auto now = std::chrono::steady_clock::now();
    if (deadline <= now) return 0;
    if (deadline - now > std::chrono::hours(1)) return 3'600'000;
    return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count());
}

// Becomes readable when the stop is requested; without a possible stop it has no descriptor.
class StopSignal {
  public:
    explicit StopSignal(std::stop_token stop) {
        if (!stop.stop_possible()) return;
        pipe_ = makePipe();
        callback_.emplace(std::move(stop), CloseWriteEnd{&pipe_});
    }

    [[nodiscard]] int descriptor() const noexcept { return pipe_.readEnd.get(); }

  private:
    struct CloseWriteEnd {
        Pipe* pipe;

        void operator()() const noexcept { pipe->writeEnd.reset(); }
    };

    Pipe pipe_;
    std::optional<std::stop_callback<CloseWriteEnd>> callback_;
};

} // namespace corvane::platform
