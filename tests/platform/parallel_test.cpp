#include "platform/threads/parallel.h"

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace corvane::platform {
namespace {

TEST(Parallel, LoopVisitsEachIndexOnceAndPassesAnExceptionOn) {
    std::vector<std::atomic<int>> visits(1000);
    parallelFor(10, 1000, [&](std::size_t index) { ++visits[index]; });
    for (std::size_t index = 0; index < visits.size(); ++index) EXPECT_EQ(visits[index], index < 10 ? 0 : 1);
    EXPECT_THROW(parallelFor(0, 100,
                             [](std::size_t index) {
                                 if (index == 70) throw std::logic_error("x");
                             }),
                 std::logic_error);
}

TEST(Parallel, PipelineKeepsTheOrderAndStopsAtAnException) {
    for (const int failing : {-1, 0, 57}) {
        int next = 0;
        std::vector<int> passed;
        const auto take = [&] { return next < 500 ? std::optional(next++) : std::nullopt; };
        const auto work = [&](int item) { return item == failing ? throw std::logic_error("x") : item * 2; };
        const auto pass = [&](int made) { passed.push_back(made); };
        if (failing < 0)
            orderedPipeline(6, take, work, pass);
        else
            EXPECT_THROW(orderedPipeline(6, take, work, pass), std::logic_error);
        EXPECT_LE(passed.size(), failing < 0 ? 500U : static_cast<std::size_t>(failing));
        EXPECT_EQ(failing < 0, passed.size() == 500U);
        for (std::size_t index = 0; index < passed.size(); ++index)
            EXPECT_EQ(passed[index], static_cast<int>(index) * 2);
    }
}

TEST(Parallel, NoCallAheadOutlivesTheExceptionOfItsCaller) {
    for (int round = 0; round < 100; ++round) {
        std::atomic<int> running = 0;
        const auto work = [&] {
            ++running;
            std::this_thread::yield();
            --running;
        };
        EXPECT_THROW(
            {
                CallAhead ahead(work);
                throw std::logic_error("x");
            },
            std::logic_error);
        EXPECT_EQ(running, 0);
    }
    CallAhead failing([] { throw std::runtime_error("y"); });
    EXPECT_THROW(failing.wait(), std::runtime_error);
}

} // namespace
} // namespace corvane::platform
