#include <atomic>
#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include "worker/fake_worker.h"
#include "worker/worker_session.h"

namespace corvane::testing {
namespace {

using namespace std::chrono_literals;
using Kind = WorkerError::Kind;
using Session = MailWorkerClient::Session;

// Answers with the path as the name and its process id as the size; some paths make it misbehave.
constexpr const char* moods = R"(
def named(name): return json.dumps({"ok": True, "attachments": [{"file_name": name, "estimated_size": os.getpid()}]})
def handle(request):
    path = request["file_path"]
    if path == "hang": time.sleep(1000)
    elif path == "deaf":
        signal.signal(signal.SIGTERM, signal.SIG_IGN)
        while True: time.sleep(1000)
    elif path == "die": os._exit(0)
    elif path == "mute": os.close(1)
    elif path == "garbage": out("garbage\n")
    elif path == "refuse": out('{"ok": false}\n')
    elif path == "none": out('{"ok": true}\n')
    elif path == "flood":
        while True: out("x" * 50000)
    elif path == "twice": out(named("first") + "\n" + named("second") + "\n")
    elif path == "pieces":
        for byte in (named("y" * 200000) + "\n").encode(): out(bytes([byte]))
    elif path == "log":
        for _ in range(100): os.write(2, b"x" * 50000)
        out(named(path) + "\n")
    else: out(named(path) + "\n")
)";

std::string nameFor(Session& session, const std::string& path) {
    const auto list = session.attachments(FileURL(path), 8);
    return list.empty() ? "" : list[0].fileName;
}

std::int64_t processOf(Session& session) {
    return session.attachments(FileURL("pid"), 8).at(0).estimatedSize.value();
}

WorkerError failureFor(Session& session, const std::string& path) {
    return errorOf([&] { session.attachments(FileURL(path), 8); });
}

struct Serving : ::testing::Test {
    void TearDown() override { EXPECT_FALSE(hasChildren()); }

    FakeWorker worker{FakeWorker::serving(moods)};
    MailWorkerClient client = worker.client();
};

TEST_F(Serving, OneProcessAnswersManyRequests) {
    Session session(client);
    const auto process = processOf(session);
    EXPECT_EQ(nameFor(session, "a\n\"b\""), "a\n\"b\"");
    EXPECT_EQ(nameFor(session, "pieces"), std::string(200'000, 'y'));
    EXPECT_EQ(nameFor(session, "none"), "");
    EXPECT_EQ(nameFor(session, "log"), "log");
    EXPECT_EQ(processOf(session), process);
    // Answers are taken in the order in which they come, one a request.
    EXPECT_EQ(nameFor(session, "twice"), "first");
    EXPECT_EQ(nameFor(session, "third"), "second");
    EXPECT_EQ(nameFor(session, "fourth"), "third");
}

TEST_F(Serving, AnErrorCostsOnlyItsMessage) {
    Session session(client);
    EXPECT_EQ(failureFor(session, "garbage"), WorkerError(Kind::invalidResponse, "garbage"));
    EXPECT_EQ(failureFor(session, "refuse"), WorkerError(Kind::workerFailed, "未知错误"));
    EXPECT_EQ(nameFor(session, "next"), "next");
}

TEST_F(Serving, AHangingWorkerIsReplaced) {
    Session session(client);
    const auto first = processOf(session);
    worker.limits.sessionRead = 1s;
    const auto hasty = worker.client();
    Session hurried(hasty);
    const WorkerError timeOut(
        Kind::workerFailed,
        "worker 处理超时（1 秒无响应），已重启。该附件可能内容异常或正文不在邮件文件内。");
    const auto before = processOf(hurried);
    for (const char* mood : {"hang", "deaf"}) {
        EXPECT_EQ(failureFor(hurried, mood), timeOut);
        EXPECT_NE(processOf(hurried), before);
    }
    EXPECT_EQ(::kill(static_cast<pid_t>(before), 0), -1);
    EXPECT_EQ(processOf(session), first);
}

TEST_F(Serving, WithoutANewProcessItIsClosed) {
    worker.limits.sessionRead = 1s;
    const auto hasty = worker.client();
    Session session(hasty);
    EXPECT_EQ(nameFor(session, "a"), "a");
    worker.platform.runtimes.clear();
    EXPECT_EQ(failureFor(session, "hang").kind(), Kind::workerFailed);
    EXPECT_EQ(failureFor(session, "a"), WorkerError(Kind::launchFailed, "worker 已关闭"));
    session.close();
}

TEST_F(Serving, AWorkerThatEndsOrFallsSilentIsTold) {
    const WorkerError nothing(Kind::invalidResponse, "worker 没有返回数据");
    const WorkerError closed(Kind::launchFailed, "worker 已关闭");
    Session mute(client);
    EXPECT_EQ(failureFor(mute, "mute"), nothing);
    EXPECT_EQ(failureFor(mute, "a"), nothing);
    Session dying(client);
    EXPECT_EQ(failureFor(dying, "die"), nothing);
    // The pipe may close a moment before the process counts as ended.
    WorkerError after = failureFor(dying, "a");
    while (after == nothing) after = failureFor(dying, "a");
    EXPECT_EQ(after, closed);
}

TEST_F(Serving, AFloodEndsAtTheLimitAndTheWorkerIsReplaced) {
    Session session(client);
    const auto before = processOf(session);
    EXPECT_EQ(failureFor(session, "flood"), WorkerError(Kind::invalidResponse, "worker 返回的数据超过上限"));
    EXPECT_NE(processOf(session), before);
}

TEST_F(Serving, AWorkerThatNeverReadsDoesNotBlockTheWriter) {
    worker.become("time.sleep(1000)");
    worker.limits.sessionRead = 300ms;
    const auto hasty = worker.client();
    Session session(hasty);
    EXPECT_EQ(failureFor(session, std::string(1 << 20, 'x')).kind(), Kind::workerFailed);
}

TEST_F(Serving, CloseSaysGoodbyeOnce) {
    const std::string told = worker.home.at("told");
    worker.become("for line in sys.stdin:\n    open('" + told +
                  "', 'a').write(line)\n    out('any line\\n')");
    Session session(client);
    session.close();
    session.close();
    EXPECT_EQ(readWhole(told), "{\"command\":\"shutdown\"}\n");
    EXPECT_EQ(failureFor(session, "a"), WorkerError(Kind::launchFailed, "worker 已关闭"));
    {
        const Session forgotten(client);
    }
    EXPECT_EQ(readWhole(told), "{\"command\":\"shutdown\"}\n{\"command\":\"shutdown\"}\n");

    worker.become("time.sleep(1000)");
    worker.limits.sessionRead = 200ms;
    const auto hasty = worker.client();
    Session deaf(hasty);
    deaf.close();
}

TEST_F(Serving, AStopEndsTheWaitAndTheSession) {
    worker.become("sys.stdin.readline()\nopen('" + worker.home.at("asked") +
                  "', 'w').close()\ntime.sleep(1000)");
    Session session(client);
    std::stop_source stop;
    std::thread stopper([&] {
        while (!std::filesystem::exists(worker.home.at("asked"))) std::this_thread::yield();
        stop.request_stop();
    });
    const WorkerError closed(Kind::launchFailed, "worker 已关闭");
    EXPECT_EQ(errorOf([&] { session.attachments(FileURL("a"), 8, stop.get_token()); }), closed);
    stopper.join();
    EXPECT_EQ(failureFor(session, "a"), closed);
}

TEST_F(Serving, ThreadsTakeTurns) {
    Session session(client);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 50; ++i) {
                const std::string name = std::to_string(t * 1000 + i);
                if (nameFor(session, name) != name) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace corvane::testing
