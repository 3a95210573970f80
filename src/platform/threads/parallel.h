// The one place where work is spread over the processors: loops, calls side by side, and a pipeline that
// keeps its order. On oneTBB's pool; an exception of any part stops the rest as soon as may be and is passed
// on.
//
// Under the thread sanitizer the same goes over threads of the standard library: the sanitizer sees no order
// between the steps of a pool whose library wasn't built with it, and reports races that aren't there.
#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#if defined(__SANITIZE_THREAD__)
#include "platform/threads/thread_lanes.h"
#else
#include <tbb/parallel_for.h>
#include <tbb/parallel_invoke.h>
#include <tbb/parallel_pipeline.h>
#include <tbb/task_group.h>
#endif

namespace corvane::platform {

#if defined(__SANITIZE_THREAD__)

using thread_lanes::CallAhead;
using thread_lanes::orderedPipeline;
using thread_lanes::parallelCalls;
using thread_lanes::parallelFor;

#else

// body(i) for each i from `begin` up to but not including `end`, in any order.
template <class Body>
void parallelFor(std::size_t begin, std::size_t end, const Body& body) {
    tbb::parallel_for(begin, end, body);
}

// Both at a time; returns when both have ended.
template <class First, class Second>
void parallelCalls(const First& first, const Second& second) {
    tbb::parallel_invoke(first, second);
}

// One call that runs while the caller goes on. An object that an exception ends before wait() waits itself.
class CallAhead {
  public:
    template <class Call>
    explicit CallAhead(const Call& call) {
        group_.run(call);
    }

    // To be called once. Throws what the call threw.
    void wait() { group_.wait(); }

  private:
    tbb::task_group group_;
};

// The first exception of several calls. From then on no call is made.
class FirstFailure {
  public:
    template <class Call>
    void guard(const Call& call) {
        if (hasFailed_.load()) return;
        try {
            call();
        } catch (...) {
            if (!hasFailed_.exchange(true)) failure_ = std::current_exception();
        }
    }

    // To be called when no other thread guards a call any more.
    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

  private:
    std::atomic<bool> hasFailed_{false};
    std::exception_ptr failure_;
};

// Takes items from `next`, a function that gives std::optional, absent behind the last, works on up to
// `inFlight` of them at a time, and hands what came of them to `pass` in the order of the items. `next` and
// `pass` are never called twice at a time. No exception goes through oneTBB's pipeline, which would forget
// what is on its way in it.
template <class Next, class Work, class Pass>
void orderedPipeline(std::size_t inFlight, const Next& next, const Work& work, const Pass& pass) {
    using Item = typename std::invoke_result_t<const Next&>::value_type;
    using Made = std::shared_ptr<std::invoke_result_t<const Work&, Item>>;
    FirstFailure failure;
    const auto take = [&](tbb::flow_control& control) -> Item {
        std::optional<Item> item;
        failure.guard([&] { item = next(); });
        if (item) return *std::move(item);
        control.stop();
        return {};
    };
    const auto make = [&](const Item& item) {
        Made made;
        failure.guard([&] { made = std::make_shared<typename Made::element_type>(work(item)); });
        return made;
    };
    const auto hand = [&](const Made& made) { failure.guard([&] { pass(std::move(*made)); }); };
    tbb::parallel_pipeline(inFlight,
                           tbb::make_filter<void, Item>(tbb::filter_mode::serial_in_order, take) &
                               tbb::make_filter<Item, Made>(tbb::filter_mode::parallel, make) &
                               tbb::make_filter<Made, void>(tbb::filter_mode::serial_in_order, hand));
    failure.rethrow();
}

#endif

} // namespace corvane::platform
