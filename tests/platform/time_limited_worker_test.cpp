#include "platform/threads/time_limited_worker.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>

#include "platform/files/directory.h"
#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using testing::TemporaryHome;
using namespace std::chrono_literals;

// Blocks a job until the test lets it go on.
struct Gate {
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = false;

    void pass() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isOpen; });
    }

    void open() {
        const std::lock_guard lock(mutex);
        isOpen = true;
        changed.notify_all();
    }
};

// On a busy machine the time may be over before the job began; then it never does.
void abandonAtWork(TimeLimitedWorker& worker, const std::function<void(JobLimit&)>& job) {
    const auto hasBegun = std::make_shared<std::atomic<bool>>(false);
    while (!*hasBegun) {
        EXPECT_FALSE(worker.run(20ms, [hasBegun, job](JobLimit& limit) {
            *hasBegun = true;
            job(limit);
        }));
    }
}

TEST(TimeLimitedWorker, LeavesAJobThatHangsAndGoesOnWithAFreshThread) {
    const auto gate = std::make_shared<Gate>();
    const auto wasAbandoned = std::make_shared<bool>(false);
    TimeLimitedWorker worker;
    abandonAtWork(worker, [gate, wasAbandoned](JobLimit& limit) {
        gate->pass();
        *wasAbandoned = limit.isAbandoned();
    });
    std::thread::id first;
    std::thread::id second;
    EXPECT_TRUE(worker.run(10s, [&](JobLimit&) { first = std::this_thread::get_id(); }));
    EXPECT_TRUE(worker.run(10s, [&](JobLimit&) { second = std::this_thread::get_id(); }));
    EXPECT_EQ(first, second);
    gate->open();
    waitForAbandonedJobs();
    EXPECT_TRUE(*wasAbandoned);
}

TEST(TimeLimitedWorker, GivesEachStepTheWholeTime) {
    TimeLimitedWorker worker;
    const auto start = std::chrono::steady_clock::now();
    const bool hasEnded = worker.run(500ms, [&](JobLimit& limit) {
        while (std::chrono::steady_clock::now() - start < 700ms) limit.restart();
    });
    EXPECT_TRUE(hasEnded);
}

TEST(TimeLimitedWorker, NothingOfAJobOutlivesItsEnd) {
    const auto owned = std::make_shared<int>();
    for (int round = 0; round < 300; ++round) {
        TimeLimitedWorker().run(0s, [owned](JobLimit&) {}); // most are given up before they begin
        waitForAbandonedJobs();
        ASSERT_EQ(owned.use_count(), 1);
    }
}

TEST(TimeLimitedWorker, AnAbandonedJobChangesNothingAnyMore) {
    const TemporaryHome home;
    home.write("victim", "precious");
    const auto gate = std::make_shared<Gate>();
    TimeLimitedWorker worker;
    abandonAtWork(worker, [gate, &home](JobLimit& limit) {
        AbandonableFileLayer files(posixFileLayer(), limit);
        const int descriptor = files.open(home.at("new"), O_WRONLY | O_CREAT, 0644);
        gate->pass();
        EXPECT_EQ(files.write(descriptor, "x", 1), -1);
        EXPECT_EQ(errno, ECANCELED);
        EXPECT_EQ(files.close(descriptor), 0);
        EXPECT_EQ(files.open(home.at("victim"), O_WRONLY | O_TRUNC, 0644), -1);
        EXPECT_EQ(files.makeDirectory(home.at("folder"), 0755), -1);
        EXPECT_EQ(files.rename(home.at("new"), home.at("victim")), -1);
        EXPECT_EQ(files.unlink(home.at("victim")), -1);
    });
    gate->open();
    waitForAbandonedJobs();
    EXPECT_EQ(testing::readWhole(home.at("victim")), "precious");
    EXPECT_EQ(fileSize(home.at("new")), 0);
    EXPECT_FALSE(fileExists(home.at("folder")));
}
} // namespace
} // namespace corvane::platform
