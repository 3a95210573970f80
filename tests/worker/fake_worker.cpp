#include "worker/fake_worker.h"

#include <cerrno>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "platform/files/directory.h"

namespace corvane::testing {

FakeWorker::FakeWorker(const std::string& lines) {
    platform.resourceFolders = {home.makeFolder("resources")};
    platform.runtimes = {"/usr/bin/python3"};
    become(lines);
}

void FakeWorker::become(const std::string& lines) const {
    home.write("resources/mail_worker.py", R"(import json, os, signal, sys, time
def out(data):
    data = data if isinstance(data, bytes) else data.encode()
    while data: data = data[os.write(1, data):]
)" + lines);
}

std::string FakeWorker::serving(const std::string& lines) {
    return lines + R"(
assert sys.argv[1:] == ["--serve"]
for line in sys.stdin.buffer:
    request = json.loads(line)
    if request["command"] == "shutdown":
        out('{"ok": true}\n')
        break
    handle(request)
)";
}

WorkerError errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const WorkerError& error) {
        return error;
    }
    ADD_FAILURE() << "no error";
    return WorkerError(WorkerError::Kind::workerNotFound);
}

std::size_t openDescriptors() {
    return platform::listDirectory("/dev/fd", platform::HiddenEntries::include)->size();
}

bool hasChildren() {
    return ::waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
}

} // namespace corvane::testing
