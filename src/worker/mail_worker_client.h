// The client of the mail worker, a Python script in a process of its own that parses what of a message is
// hard: bodies, encoded parts, attachments. A message that makes it hang, crash or babble costs that message
// alone, so every exchange has a time limit and a size limit, and what comes back is read as hostile input.
//
// Requests and answers are JSON objects. A one-shot run starts a process for one request; a Session keeps one
// process for many. All calls block: background work only. No call changes the client; any number of
// one-shot runs may go on at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/platform.h"
#include "records/file_url.h"
#include "text/shared_text.h"
#include "worker/worker_error.h"

namespace corvane {

class MailWorkerClient {
  public:
    // "preview", "attachment_data" and "attachments" name a file, "bodytext_batch" several. "attachments" is
    // only for sessions.
    struct Request {
        std::string command;
        std::optional<std::string> filePath{};
        std::optional<std::string> messageText{};
        std::optional<std::int64_t> maxBytes{}; // read of each file, or of one attachment's data
        std::optional<std::string> fileName{};
        std::optional<std::vector<std::string>> filePaths{};
        std::optional<std::int64_t> occurrence{}; // of the attachments with that name, 0 for the first
    };

    struct Attachment {
        std::string fileName;
        std::optional<std::string> contentType{};
        std::optional<std::int64_t> estimatedSize{}; // bytes
    };

    struct BatchItem {
        std::string path;
        std::string text;
    };

    struct Response {
        bool ok = false;
        std::optional<std::string> preview{};
        std::optional<bool> isHtml{};
        std::optional<std::vector<Attachment>> attachments{};
        std::optional<std::string> attachmentDataBase64{};
        std::optional<std::vector<BatchItem>> items{};
        std::optional<std::string> error{};
    };

    struct Limits {
        std::chrono::milliseconds quickRun{4'000}; // a preview, the data of one attachment
        std::chrono::milliseconds batchRun{180'000};
        std::chrono::milliseconds sessionRead{20'000}; // each read and each write, not each answer
        // The data of a 200 MiB attachment as base64, and 150 bodies of 2 MiB, fit.
        std::int64_t runAnswerBytes = 512LL << 20;
        std::int64_t sessionAnswerBytes = 64LL << 20;
    };

    // Body texts by the path of the file.
    using BodyTexts = std::unordered_map<SharedText, std::string, TextHash, TextEqual>;

    class Session;

    explicit MailWorkerClient(const platform::Platform& platform);

    MailWorkerClient(const platform::Platform& platform, const Limits& limits)
      : platform_(platform)
      , limits_(limits) {}

    [[nodiscard]] const Limits& limits() const { return limits_; }

    // Upkeep: the processes yield the processor to what the user waits for.
    void setUpkeep(bool isUpkeep) { isUpkeep_ = isUpkeep; }

    // The script beside the program or among its data, else that of the source tree. Throws `workerNotFound`.
    [[nodiscard]] FileURL workerScriptURL() const;

    // CORVANE_PYTHON, a runtime that came with the program, or the system's: the first that can be executed.
    // Throws `pythonNotFound`.
    [[nodiscard]] FileURL pythonRuntimeURL() const;

    // One process for one request. Throws WorkerError; a worker that runs past the limit, or past a requested
    // stop, is ended.
    [[nodiscard]] Response runRequest(const Request& request, std::chrono::milliseconds timeLimit,
                                      const std::stop_token& stop = {}) const;

    // The `preview` of the answer, within the limit of a quick run. Throws WorkerError, also for an answer
    // without one.
    [[nodiscard]] std::string runPreviewRequest(const Request& request,
                                                const std::stop_token& stop = {}) const;

    // The same for a message file, of which at most `maxBytes` are read.
    [[nodiscard]] std::string previewText(const FileURL& file, std::int64_t maxBytes,
                                          const std::stop_token& stop = {}) const;

    // The body texts of message files, .eml or .emlx; files without an answer are left out. Of each
    // at most `maxBytes` are read. Without files no process is started. Throws WorkerError.
    [[nodiscard]] BodyTexts bodyTextBatch(const std::vector<FileURL>& files, std::int64_t maxBytes,
                                          const std::stop_token& stop = {}) const;

    // Throws WorkerError: `workerFailed` with the reason of an answer that isn't ok, `invalidResponse` for
    // bytes that are no answer.
    [[nodiscard]] static Response decodeResponse(std::string bytes);

  private:
    [[nodiscard]] std::vector<std::string> scriptArguments() const;

    const platform::Platform& platform_;
    Limits limits_;
    bool isUpkeep_ = false;
};

} // namespace corvane
