#include <filesystem>
#include <optional>
#include <stop_token>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "worker/fake_worker.h"

namespace corvane::testing {
namespace {

using namespace std::chrono_literals;
using Kind = WorkerError::Kind;
using Request = MailWorkerClient::Request;
using ::testing::IsEmpty;

constexpr const char* malformed = "未能读取数据，因为它的格式不正确。";

// Also sees to it that nothing is left behind, whatever happened.
class OneShot : public ::testing::Test {
  protected:
    void TearDown() override {
        EXPECT_THAT(leftoversIn(worker.platform), IsEmpty());
        EXPECT_FALSE(hasChildren());
        EXPECT_EQ(openDescriptors(), descriptors);
    }

    MailWorkerClient::Response run(const std::string& lines,
                                   const Request& request = {.command = "preview"}) {
        worker.become(lines);
        return worker.client().runRequest(request, worker.limits.quickRun);
    }

    WorkerError failure(const std::string& lines, const Request& request = {.command = "preview"}) {
        return errorOf([&] { run(lines, request); });
    }

    FakeWorker worker{""};
    std::size_t descriptors = openDescriptors();
};

TEST_F(OneShot, SendsTheRequestAndReadsEveryField) {
    const auto echo = run("out(json.dumps({'ok': True, 'preview': sys.stdin.read() + str(sys.argv[1:]) + "
                          "str(sys.flags.isolated) + str(sys.dont_write_bytecode)}))",
                          {.command = "preview",
                           .filePath = "/a \"b\"\n\u4e2d",
                           .maxBytes = 5,
                           .filePaths = std::vector<std::string>{"x", "y"}});
    EXPECT_EQ(echo.preview,
              "{\"command\":\"preview\",\"file_path\":\"/a \\\"b\\\"\\n\u4e2d\",\"max_bytes\":5,"
              "\"file_paths\":[\"x\",\"y\"]}[]1True");
    const auto full =
        run("out('''{\"ok\": true, \"is_html\": true, \"attachments\": [{\"file_name\": \"a\"}, "
            "{\"file_name\": \"b\", \"content_type\": \"c/d\", \"estimated_size\": 5000000000}], "
            "\"attachment_data_base64\": \"QQ==\", \"items\": [{\"path\": \"p\", \"text\": \"t\"}], "
            "\"error\": null, \"more\": [1, {}]}\\n ''')");
    EXPECT_EQ(full.preview, std::nullopt);
    EXPECT_EQ(full.isHtml, true);
    ASSERT_EQ(full.attachments->size(), 2U);
    EXPECT_EQ((*full.attachments)[0].contentType, std::nullopt);
    EXPECT_EQ((*full.attachments)[1].estimatedSize, 5'000'000'000);
    EXPECT_EQ(full.attachmentDataBase64, "QQ==");
    EXPECT_EQ(full.items->at(0).text, "t");
}

TEST_F(OneShot, EveryFailureHasItsError) {
    struct {
        std::string lines;
        WorkerError expected;
    } const cases[] = {
        {"out('{\"ok\": false}')", WorkerError(Kind::workerFailed, "未知错误")},
        {"out('{\"ok\": false, \"error\": \"坏\"}')", WorkerError(Kind::workerFailed, "坏")},
        {"", WorkerError(Kind::invalidResponse, malformed)},
        {"out(b'\\xff\\xfe')", WorkerError(Kind::invalidResponse, malformed)},
        {"out(b'{\"ok\": true, \"preview\": \"\\xff\"}')", WorkerError(Kind::invalidResponse, malformed)},
        {"out('{\"ok\": true, \"preview\": \"a\\0b\"}')",
         WorkerError(Kind::invalidResponse, std::string("{\"ok\": true, \"preview\": \"a\0b\"}", 30))},
        {"sys.exit(3)", WorkerError(Kind::launchFailed, "")},
        {"os.write(2, '坏\\n'.encode()); sys.exit(3)", WorkerError(Kind::launchFailed, "坏\n")},
        {"os.write(2, b'\\xff'); sys.exit(3)", WorkerError(Kind::launchFailed, "exit 3")},
        {"out('{\"ok\": true}'); os.kill(os.getpid(), 9)", WorkerError(Kind::launchFailed, "")},
    };

    for (const auto& [lines, expected] : cases) {
        const WorkerError error = failure(lines);
        EXPECT_EQ(error, expected) << lines << ": " << error.errorDescription();
    }
}

TEST_F(OneShot, WhatIsNoAnswerIsShown) {
    for (const std::string answer :
         {"Traceback: 坏", "[]", "null", R"({"preview": "x"})", R"({"ok": 1})",
          R"({"ok": true, "preview": 5})", R"({"ok": true, "items": [{"path": "a"}]})",
          R"({"ok": true} {"ok": true})", R"({"ok": true)"}) {
        const WorkerError error = errorOf([&] { (void)MailWorkerClient::decodeResponse(answer); });
        EXPECT_EQ(error, WorkerError(Kind::invalidResponse, answer));
    }
}

TEST_F(OneShot, AnAnswerOfBracketsEndsInAnErrorOfBoundedLength) {
    const WorkerError error = failure("out('{\"ok\": true, \"attachments\":' + '[' * 3000000)");
    EXPECT_EQ(error.kind(), Kind::invalidResponse);
    EXPECT_LT(error.detail().size(), 20'000U);
    // Where nobody asks for it, any depth is passed over.
    EXPECT_TRUE(run("out('{\"ok\": true, \"x\":' + '[' * 500 + ']' * 500 + '}')").ok);
}

TEST_F(OneShot, AWorkerThatHangsIsEndedWithAllThatItStarted) {
    worker.limits.quickRun = 300ms;
    const WorkerError timeOut(Kind::launchFailed, "worker 超时");
    EXPECT_EQ(failure("time.sleep(1000)"), timeOut);
    EXPECT_EQ(failure("signal.signal(signal.SIGTERM, signal.SIG_IGN)\nwhile True: time.sleep(1000)"),
              timeOut);
    worker.limits.quickRun = 2s;
    const std::string fifo = worker.home.at("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    std::string seen = "?";
    std::thread reader([&] { seen = readWhole(fifo); });
    // The grandchild holds the pipe open; that it ends shows its death.
    EXPECT_EQ(failure("f = os.open('" + fifo + "', os.O_WRONLY)\nif os.fork() == 0: time.sleep(1000)\n" +
                      "os.close(f)\ntime.sleep(1000)"),
              timeOut);
    // Lets the reader go that no writer ever came to.
    ::close(::open(fifo.c_str(), O_WRONLY | O_NONBLOCK));
    reader.join();
    EXPECT_EQ(seen, "");
}

TEST_F(OneShot, AWorkerThatNeverReadsItsInputCostsItsTimeAndNotMore) {
    const Request large{.command = "bodytext_batch",
                        .filePaths = std::vector<std::string>(10'000, std::string(200, 'x'))};
    EXPECT_TRUE(run("os.close(0); out('{\"ok\": true}')", large).ok);
    EXPECT_TRUE(run("out('{\"ok\": true}')", large).ok);
    worker.limits.quickRun = 300ms;
    EXPECT_EQ(failure("time.sleep(1000)", large).detail(), "worker 超时");
}

TEST_F(OneShot, AFloodEndsAtTheLimit) {
    const WorkerError tooMuch(Kind::invalidResponse, "worker 返回的数据超过上限");
    EXPECT_EQ(failure("while True: out('{\"ok\": true}' * 10000)"), tooMuch);
    EXPECT_EQ(failure("while True: os.write(2, b'x' * 100000)").kind(), Kind::launchFailed);
    EXPECT_TRUE(run("out('{\"ok\": true, \"preview\": \"' + 'x' * ((8 << 20) - 100) + '\"}')").ok);
}

TEST_F(OneShot, AStopEndsTheRun) {
    std::stop_source stop;
    worker.become("open('" + worker.home.at("started") + "', 'w').close()\ntime.sleep(1000)");
    std::thread stopper([&] {
        while (!std::filesystem::exists(worker.home.at("started"))) std::this_thread::yield();
        stop.request_stop();
    });
    const auto error = errorOf([&] {
        (void)worker.client().runRequest({.command = "preview"}, worker.limits.quickRun, stop.get_token());
    });
    stopper.join();
    EXPECT_EQ(error, WorkerError(Kind::launchFailed, "worker 已停止"));
}

TEST_F(OneShot, PreviewsAndBodies) {
    worker.become("out('{\"ok\": true}')");
    EXPECT_EQ(errorOf([&] { (void)worker.client().previewText(FileURL("/a"), 5); }),
              WorkerError(Kind::invalidResponse, "缺少 preview 字段"));
    worker.become("out(json.dumps({'ok': True, 'preview': str(json.loads(sys.stdin.read()))}))");
    EXPECT_EQ(worker.client().previewText(FileURL("/a"), 5),
              "{'command': 'preview', 'file_path': '/a', 'max_bytes': 5}");
    worker.become(
        "out('{\"ok\": true, \"items\": [{\"path\": \"/a\", \"text\": \"1\"}, {\"path\": \"/b\", \"text\": "
        "\"2\"}, {\"path\": \"/a\", \"text\": \"3\"}, {\"path\": \"/unasked\", \"text\": \"4\"}]}')");
    const MailWorkerClient::BodyTexts expected = {{"/a", "3"}, {"/b", "2"}};
    EXPECT_EQ(worker.client().bodyTextBatch({FileURL("/b"), FileURL("/a"), FileURL("/a"), FileURL("/c")}, 5),
              expected);
    worker.become("raise SystemExit(9)");
    EXPECT_THAT(worker.client().bodyTextBatch({}, 5), IsEmpty());
    EXPECT_EQ(errorOf([&] { (void)worker.client().bodyTextBatch({FileURL("/a")}, 5); }).kind(),
              Kind::launchFailed);
}

TEST_F(OneShot, ScriptAndRuntimeAreSearchedInOrder) {
    namespace fs = std::filesystem;
    auto& platform = worker.platform;
    platform.resourceFolders = {worker.home.at("one"), worker.home.at("two")};
    const auto client = worker.client();
    EXPECT_TRUE(client.workerScriptURL().path().view().ends_with("/src/worker/mail_worker.py"));
    for (const char* place : {"two/Workers/", "one/Workers/", "two/", "one/"}) {
        const std::string script = worker.home.write(std::string(place) + "mail_worker.py", "");
        EXPECT_EQ(client.workerScriptURL(), FileURL(script));
    }

    platform.runtimes = {worker.home.makeFolder("folder"), worker.home.write("plain", "x")};
    EXPECT_EQ(errorOf([&] { (void)client.pythonRuntimeURL(); }), WorkerError(Kind::pythonNotFound));
    platform.runtimes.emplace_back("/usr/bin/env");
    EXPECT_EQ(client.pythonRuntimeURL(), FileURL("/usr/bin/env"));
    const std::string bundled = worker.home.write("two/PythonRuntime/bin/python3", "");
    fs::permissions(bundled, fs::perms::owner_all);
    EXPECT_EQ(client.pythonRuntimeURL(), FileURL(bundled));
    ::setenv("CORVANE_PYTHON", worker.home.at("plain").c_str(), 1);
    EXPECT_EQ(client.pythonRuntimeURL(), FileURL(bundled));
    ::setenv("CORVANE_PYTHON", "/usr/bin/python3", 1);
    EXPECT_EQ(client.pythonRuntimeURL(), FileURL("/usr/bin/python3"));
    ::unsetenv("CORVANE_PYTHON");
}

TEST_F(OneShot, WhatCannotBeStartedIsTold) {
    worker.platform.runtimes = {worker.home.write("no-program", "\x7F")};
    std::filesystem::permissions(worker.home.at("no-program"), std::filesystem::perms::owner_all);
    EXPECT_EQ(failure("").kind(), Kind::launchFailed);
    worker.platform.runtimes = {"/usr/bin/python3"};
    const std::string temporary = std::exchange(worker.platform.temporary, worker.home.at("missing"));
    EXPECT_EQ(failure(""), WorkerError(Kind::invalidResponse, "无法创建 worker 临时输出文件"));
    worker.platform.temporary = temporary;
}

} // namespace
} // namespace corvane::testing
