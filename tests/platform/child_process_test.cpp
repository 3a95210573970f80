#include "platform/processes/child_process.h"

#include <chrono>
#include <csignal>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "platform/files/directory.h"
#include "platform/processes/process_start.h"
#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using testing::TemporaryHome;

constexpr auto farAway = 60s;

ChildProcessOptions shell(const std::string& script) {
    return {.executable = "/bin/sh", .arguments = {"-c", script}};
}

CapturedOutput runShell(const std::string& script, std::string_view input = {}) {
    return runAndCapture("/bin/sh", {"-c", script}, input);
}

std::size_t openDescriptors() {
    return listDirectory("/dev/fd", HiddenEntries::include)->size();
}

bool hasChildren() {
    return ::waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
}

// A child that has put a line into its output, and so got past its own set-up.
struct ReadyChild {
    explicit ReadyChild(const std::string& script)
      : child(start(script)) {
        output.writeEnd.reset();
        char byte = 0;
        EXPECT_EQ(::read(output.readEnd.get(), &byte, 1), 1);
    }

    ChildProcess start(const std::string& script) {
        auto options = shell(script);
        options.standardOutput = output.writeEnd.get();
        return ChildProcess(options);
    }

    Pipe output = makePipe();
    ChildProcess child;
};

TEST(ChildProcess, ReportsHowTheProgramEnded) {
    EXPECT_EQ(ChildProcess(shell("exit 0")).wait(), 0);
    EXPECT_EQ(ChildProcess(shell("exit 7")).wait(), 7);
    EXPECT_EQ(ChildProcess(shell("kill -KILL $$")).wait(), 128 + SIGKILL);
    ChildProcess child(shell("exit 3"));
    EXPECT_EQ(child.waitUntil(Clock::now() + farAway), 3);
    EXPECT_EQ(child.wait(), 3);
    EXPECT_FALSE(child.isRunning());
    child.kill();
    child.terminateAndWait();
}

TEST(ChildProcess, StartFailuresTellTheirReasonAndLeaveNothing) {
    const TemporaryHome home;
    const std::size_t before = openDescriptors();

    struct {
        std::string executable;
        int error;
    } const cases[] = {
        {home.at("nothing"), ENOENT},
        {home.write("plain", "x"), EACCES},
        {home.path(), EACCES},
        {std::string("/bin/sh\0x", 9), EINVAL},
    };

    for (const auto& [executable, error] : cases) {
        try {
            ChildProcess child({.executable = executable});
            ADD_FAILURE() << "started " << executable;
        } catch (const std::system_error& failure) {
            EXPECT_EQ(failure.code().value(), error) << executable;
        }
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, WaitEndsAtTheDeadlineAndTheChildGoesOn) {
    ReadyChild ready("echo; exec sleep 1000");
    const auto start = Clock::now();
    EXPECT_FALSE(ready.child.waitUntil(start + 50ms));
    EXPECT_GE(Clock::now() - start, 50ms);
    EXPECT_TRUE(ready.child.isRunning());
    EXPECT_FALSE(ready.child.waitUntil(start));
    ready.child.terminateAndWait();
    EXPECT_EQ(ready.child.wait(), 128 + SIGTERM);
}

TEST(ChildProcess, AnEndBeforeAPastDeadlineIsStillSeen) {
    ReadyChild ready("echo; exit 5");
    char byte = 0;
    EXPECT_EQ(::read(ready.output.readEnd.get(), &byte, 1), 0);
    while (ready.child.isRunning()) std::this_thread::yield();
    EXPECT_EQ(ready.child.waitUntil(Clock::now() - 1s), 5);
}

TEST(ChildProcess, AStopRequestWakesTheWait) {
    ReadyChild ready("echo; exec sleep 1000");
    std::stop_source before;
    before.request_stop();
    EXPECT_FALSE(ready.child.waitUntil(Clock::now() + farAway, before.get_token()));

    std::stop_source during;
    std::optional<int> status = 0;
    std::thread waiter([&] { status = ready.child.waitUntil(Clock::time_point::max(), during.get_token()); });
    during.request_stop();
    waiter.join();
    EXPECT_FALSE(status);
    EXPECT_TRUE(ready.child.isRunning());
}

TEST(ChildProcess, TerminationIsForcedOnAProgramThatIgnoresIt) {
    ReadyChild ready("trap '' TERM; echo; while :; do sleep 1000; done");
    ready.child.terminateAndWait();
    EXPECT_EQ(ready.child.wait(), 128 + SIGKILL);
}

TEST(ChildProcess, ADroppedChildIsKilledAndReaped) {
    {
        const ReadyChild ready("trap '' TERM; echo; exec sleep 1000");
    }
    EXPECT_FALSE(hasChildren());
    {
        ReadyChild ready("echo; exec sleep 1000");
        const ChildProcess moved(std::move(ready.child));
    }
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, OutlivesTheThreadThatStartedIt) {
    Pipe input = makePipe();
    std::optional<ChildProcess> child;
    std::thread([&] {
        auto options = shell("read line; exit 4");
        options.standardInput = input.readEnd.get();
        child.emplace(options);
    }).join();
    writeToPipe(input.writeEnd.get(), "go on\n");
    EXPECT_EQ(child->wait(), 4);
}

TEST(ChildProcess, TheEnvironmentIsOursWithTheAddedVariables) {
    ::setenv("CORVANE_TEST_KEPT", "kept", 1);
    ::setenv("CORVANE_TEST_REPLACED", "old", 1);
    Pipe output = makePipe();
    auto options =
        shell("echo $CORVANE_TEST_KEPT $CORVANE_TEST_REPLACED; env | grep -c CORVANE_TEST_REPLACED");
    options.standardOutput = output.writeEnd.get();
    options.environment = {{"CORVANE_TEST_REPLACED", "new"}};
    ChildProcess child(options);
    output.writeEnd.reset();
    std::string text(100, '\0');
    EXPECT_EQ(child.wait(), 0);
    text.resize(static_cast<std::size_t>(::read(output.readEnd.get(), text.data(), text.size())));
    EXPECT_EQ(text, "kept new\n1\n");
}

TEST(ChildProcess, ManyAtOnceFromManyThreadsLeaveNothingBehind) {
    runShell("true");
    const std::size_t before = openDescriptors();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 25; ++i) {
                const std::string text = std::to_string(t * 100 + i);
                EXPECT_EQ(runShell("cat; exit 3", text).output, text);
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
}

TEST(RunAndCapture, DrainsLargeOutputsOfBothStreamsWhileFeedingInput) {
    const std::string input(3'000'000, 'i');
    const auto result =
        runShell("head -c 2000000 /dev/zero >&2; cat; head -c 2000000 /dev/zero >&2; exit 9", input);
    EXPECT_EQ(result.exitStatus, 9);
    EXPECT_EQ(result.output, input);
    EXPECT_EQ(result.errorOutput.size(), 4'000'000U);
}

TEST(RunAndCapture, AProgramThatDoesNotReadItsInputIsNoFailure) {
    const auto result = runShell("exec <&-; echo done", std::string(3'000'000, 'i'));
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output, "done\n");
}

TEST(WriteToPipe, AGoneReaderIsAnErrorAndNoSignal) {
    Pipe pipe = makePipe();
    pipe.readEnd.reset();
    EXPECT_EQ(writeToPipe(pipe.writeEnd.get(), "x"), -1);
    EXPECT_EQ(errno, EPIPE);
    sigset_t pending;
    ::sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST(ProcessEnd, IsToldByAThreadWhereTheSystemHasNoDescriptorForIt) {
    Pipe input = makePipe();
    auto options = shell("read line");
    options.standardInput = input.readEnd.get();
    const StartedProcess started = startProcess(options);
    const ProcessEnd end(started.pid, FileDescriptor());
    pollfd event{end.descriptor(), POLLIN, 0};
    EXPECT_EQ(::poll(&event, 1, 0), 0);
    input.writeEnd.reset();
    EXPECT_EQ(::poll(&event, 1, 60'000), 1);
    EXPECT_EQ(::waitpid(started.pid, nullptr, 0), started.pid);
}

} // namespace
} // namespace corvane::platform
