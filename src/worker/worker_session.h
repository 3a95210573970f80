// One worker process for many requests. A worker that doesn't answer in time is replaced: its message gets
// the error, the next one a fresh process. A worker that ended by itself isn't. Thread-safe: one request at a
// time, the others wait.
#pragma once

#include <cstdint>
#include <memory>
#include <stop_token>
#include <vector>

#include "records/file_url.h"
#include "text/mutex.h"
#include "worker/mail_worker_client.h"

namespace corvane {

class MailWorkerClient::Session {
  public:
    // Launches the process; throws WorkerError. The client must outlive the session.
    explicit Session(const MailWorkerClient& client);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    // Throws WorkerError. A stop that is requested meanwhile closes the session.
    Response runRequest(const Request& request, const std::stop_token& stop = {});

    std::vector<Attachment> attachments(const FileURL& file, std::int64_t maxBytes,
                                        const std::stop_token& stop = {});

    // Tells the worker to end, and sees to it. Later requests are refused.
    void close();

  private:
    class Process;

    [[nodiscard]] std::unique_ptr<Process> launch() const;
    void relaunch() REQUIRES(mutex_);

    const MailWorkerClient& client_;
    text::Mutex mutex_;
    std::unique_ptr<Process> process_ GUARDED_BY(mutex_); // null when closed
};

} // namespace corvane
