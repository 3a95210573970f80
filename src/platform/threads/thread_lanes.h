// The functions of parallel.h over threads that are made for each call. Only for builds with the thread
// sanitizer, where being simple and seen counts more than being fast.
#pragma once

#include <cstddef>
#include <exception>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "text/mutex.h"

namespace corvane::platform::thread_lanes {

// Keeps the first exception of several threads.
class FirstFailure {
  public:
    // False when the call threw.
    template <class Call>
    bool guard(const Call& call) {
        try {
            call();
            return true;
        } catch (...) {
            const text::MutexLock lock(mutex_);
            if (!failure_) failure_ = std::current_exception();
            return false;
        }
    }

    void rethrow() {
        const text::MutexLock lock(mutex_);
        if (failure_) std::rethrow_exception(failure_);
    }

  private:
    text::Mutex mutex_;
    std::exception_ptr failure_ GUARDED_BY(mutex_);
};

class CallAhead {
  public:
    template <class Call>
    explicit CallAhead(const Call& call)
      : thread_([this, call] { failure_.guard(call); }) {}

    void wait() {
        thread_.join();
        failure_.rethrow();
    }

  private:
    FirstFailure failure_;
    std::jthread thread_;
};

constexpr std::size_t laneCount = 4;

// lane(number) on several threads at a time.
template <class Lane>
void onLanes(const Lane& lane) {
    FirstFailure failure;
    {
        std::vector<std::jthread> threads;
        threads.reserve(laneCount);
        for (std::size_t number = 0; number < laneCount; ++number)
            threads.emplace_back([&, number] { failure.guard([&] { lane(number); }); });
    }
    failure.rethrow();
}

template <class Body>
void parallelFor(std::size_t begin, std::size_t end, const Body& body) {
    // Each lane has its share, however short the loop: what one lane alone did would show no race.
    onLanes([&](std::size_t number) {
        for (std::size_t index = begin + number; index < end; index += laneCount) body(index);
    });
}

template <class First, class Second>
void parallelCalls(const First& first, const Second& second) {
    CallAhead ahead(second);
    first();
    ahead.wait();
}

struct Turns {
    text::Mutex mutex;
    text::Condition changed;
    std::size_t taken GUARDED_BY(mutex) = 0;
    std::size_t turn GUARDED_BY(mutex) = 0;
    bool hasFailed GUARDED_BY(mutex) = false;
};

// An item in its lane waits for its turn; as many are in flight as there are lanes.
template <class Next, class Work, class Pass>
void orderedPipeline(std::size_t /*inFlight*/, const Next& next, const Work& work, const Pass& pass) {
    Turns turns;
    const auto step = [&] {
        text::MutexLock lock(turns.mutex);
        const auto item = turns.hasFailed ? std::nullopt : next();
        if (!item) return false;
        const std::size_t number = turns.taken++;
        lock.unlock();
        auto made = work(*item);
        lock.lock();
        turns.changed.wait(lock,
                           [&]() REQUIRES(turns.mutex) { return turns.turn == number || turns.hasFailed; });
        if (turns.hasFailed) return false;
        pass(std::move(made));
        ++turns.turn;
        turns.changed.notifyAll();
        return true;
    };
    onLanes([&](std::size_t /*number*/) {
        try {
            while (step()) {
            }
        } catch (...) {
            const text::MutexLock lock(turns.mutex);
            turns.hasFailed = true;
            turns.changed.notifyAll();
            throw;
        }
    });
}

} // namespace corvane::platform::thread_lanes
