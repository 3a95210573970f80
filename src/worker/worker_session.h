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

    // Throws WorkerError, at once when the session is closed. A stop requested meanwhile closes the session.
    Response runRequest(const Request& request, const std::stop_token& stop = {});

    // The attachments of a message file, of which at most `maxBytes` are read; empty when an answer lists
    // none. Throws as above.
    std::vector<Attachment> attachments(const FileURL& file, std::int64_t maxBytes,
                                        const std::stop_token& stop = {});

    // Asks the worker to end, and ends it if it doesn't in time. Later requests throw. A second call has no
    // effect.
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
