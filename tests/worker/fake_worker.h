// A mail worker whose behaviour is a few lines of Python, run as the real one is.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "support/scripted_platform.h"
#include "support/temporary_home.h"
#include "worker/mail_worker_client.h"

namespace corvane::testing {

class FakeWorker {
  public:
    // `lines` find the modules json, os, signal, sys and time imported, and out(text) and out(bytes), which
    // write at once.
    explicit FakeWorker(const std::string& lines);

    void become(const std::string& lines) const;

    // A worker that answers each line of its input; `handle(request)` is defined in `lines`.
    static std::string serving(const std::string& lines);

    [[nodiscard]] MailWorkerClient client() const { return {platform, limits}; }

    [[nodiscard]] std::string scriptPath() const { return home.at("resources/mail_worker.py"); }

    TemporaryHome home;
    ScriptedPlatform platform{home};
    // Long enough for a loaded machine, except where a test waits for the time-out.
    MailWorkerClient::Limits limits{.quickRun = std::chrono::minutes(2),
                                    .batchRun = std::chrono::minutes(2),
                                    .sessionRead = std::chrono::minutes(2),
                                    .runAnswerBytes = 8 << 20,
                                    .sessionAnswerBytes = 1 << 20};
};

// The error that a call ends with; fails the test when there is none.
WorkerError errorOf(const std::function<void()>& call);

std::size_t openDescriptors();
bool hasChildren();

} // namespace corvane::testing
