#include "worker/mail_worker_client.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "platform/files/directory.h"
#include "platform/files/writing/temporary_file.h"
#include "platform/paths.h"
#include "platform/processes/child_process.h"
#include "platform/processes/timed_pipe.h"
#include "records/json/json_reader.h"
#include "records/json/json_writer.h"
#include "text/charsets/charset.h"
#include "worker/python_runtime.h"
#include "worker/worker_forms.h"

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = WorkerError::Kind;

constexpr std::string_view scriptName = "mail_worker.py";
// Of what a worker wrote, in an error.
constexpr std::size_t shownBytes = 16'384;

// The start of the bytes as text; nullopt when it isn't UTF-8.
std::optional<std::string> shownText(std::string_view bytes) {
    std::string_view shown = bytes.substr(0, shownBytes);
    // The cut may have gone through a character.
    for (int removed = 0; removed < 3 && shown.size() < bytes.size() && !text::isValidUtf8(shown); ++removed)
        shown.remove_suffix(1);
    if (!text::isValidUtf8(shown)) return std::nullopt;
    return std::string(shown);
}

platform::TemporaryFile temporaryFile(const std::string& folder, std::string_view extension) {
    try {
        return {folder, "corvane-worker-", extension};
    } catch (const std::system_error&) {
        throw WorkerError(Kind::invalidResponse, "无法创建 worker 临时输出文件");
    }
}

// What a one-shot worker writes goes to files: it can't block on a pipe that nobody reads.
class OneShotRun {
  public:
    OneShotRun(const std::string& temporaryFolder, std::int64_t answerLimit)
      : output_(temporaryFile(temporaryFolder, ".json"))
      , errorOutput_(temporaryFile(temporaryFolder, ".err"))
      , answerLimit_(answerLimit) {}

    // The exit status; nullopt when the deadline passed or a stop was requested first.
    std::optional<int> run(platform::ChildProcessOptions options, const std::string& request,
                           Clock::time_point deadline, const std::stop_token& stop) {
        platform::Pipe input = platform::makePipe();
        options.standardInput = input.readEnd.get();
        options.standardOutput = output_.descriptor();
        options.standardError = errorOutput_.descriptor();
        options.fileSizeLimitBytes = answerLimit_;
        platform::ChildProcess worker(options);
        input.readEnd.reset();
        // A worker that doesn't listen says by its exit status why, or runs out of time.
        platform::sendAll(input.writeEnd.get(), request, deadline, stop);
        input.writeEnd.reset();
        const auto status = worker.waitUntil(deadline, stop);
        if (!status) worker.terminateAndWait();
        return status;
    }

    [[nodiscard]] std::string answer() const {
        // The system lets no file grow beyond the limit, so one that has reached it isn't whole.
        if (platform::fileSize(output_.path()).value_or(0) >= answerLimit_)
            throw WorkerError(Kind::invalidResponse, answerTooLong);
        return platform::readFile(output_.path()).value_or("");
    }

    [[nodiscard]] std::optional<std::string> errorText() const {
        return shownText(platform::readFilePrefix(errorOutput_.path(), 2 * shownBytes).value_or(""));
    }

  private:
    platform::TemporaryFile output_;
    platform::TemporaryFile errorOutput_;
    std::int64_t answerLimit_;
};

} // namespace

MailWorkerClient::MailWorkerClient(const platform::Platform& platform)
  : MailWorkerClient(platform, Limits()) {}

FileURL MailWorkerClient::workerScriptURL() const {
    const auto folders = platform_.programResourceFolders();
    std::vector<std::string> candidates;
    std::ranges::transform(folders, std::back_inserter(candidates),
                           [](const std::string& folder) { return platform::joinPath(folder, scriptName); });
    std::ranges::transform(folders, std::back_inserter(candidates), [](const std::string& folder) {
        return platform::joinPath(platform::joinPath(folder, "Workers"), scriptName);
    });
#ifdef CORVANE_DEVELOPMENT_WORKER
    candidates.emplace_back(CORVANE_DEVELOPMENT_WORKER);
#endif
    for (const std::string& candidate : candidates) {
        if (platform::isRegularFile(candidate)) return FileURL(candidate);
    }
    throw WorkerError(Kind::workerNotFound);
}

FileURL MailWorkerClient::pythonRuntimeURL() const {
    if (const auto python = findPythonRuntime(platform_)) return FileURL(*python);
    throw WorkerError(Kind::pythonNotFound);
}

// Isolated, so that neither the user's Python settings nor modules beside a message come in, without leaving
// compiled files beside the script, and with those that are there compared with their sources in any case.
std::vector<std::string> MailWorkerClient::scriptArguments() const {
    return {"-I", "-B", "--check-hash-based-pycs", "always", workerScriptURL().path().str()};
}

MailWorkerClient::Response MailWorkerClient::runRequest(const Request& request,
                                                        std::chrono::milliseconds timeLimit,
                                                        const std::stop_token& stop) const {
    platform::ChildProcessOptions options{
        .executable = {}, .arguments = scriptArguments(), .environment = {}, .isUpkeep = isUpkeep_};
    options.executable = pythonRuntimeURL().path().str();
    OneShotRun run(platform_.temporaryDirectory(), limits_.runAnswerBytes);
    std::optional<int> status;
    try {
        status = run.run(std::move(options), encodeJson(request), Clock::now() + timeLimit, stop);
    } catch (const std::system_error& error) {
        throw WorkerError(Kind::launchFailed, error.what());
    }
    if (!status)
        throw WorkerError(Kind::launchFailed, stop.stop_requested() ? "worker 已停止" : "worker 超时");
    std::string answer = run.answer();
    if (*status != 0)
        throw WorkerError(Kind::launchFailed, run.errorText().value_or(fmt::format("exit {}", *status)));
    return decodeResponse(std::move(answer));
}

std::string MailWorkerClient::runPreviewRequest(const Request& request, const std::stop_token& stop) const {
    Response response = runRequest(request, limits_.quickRun, stop);
    if (!response.preview) throw WorkerError(Kind::invalidResponse, "缺少 preview 字段");
    return std::move(*response.preview);
}

std::string MailWorkerClient::previewText(const FileURL& file, std::int64_t maxBytes,
                                          const std::stop_token& stop) const {
    return runPreviewRequest({.command = "preview", .filePath = file.path().str(), .maxBytes = maxBytes},
                             stop);
}

MailWorkerClient::BodyTexts MailWorkerClient::bodyTextBatch(const std::vector<FileURL>& files,
                                                            std::int64_t maxBytes,
                                                            const std::stop_token& stop) const {
    BodyTexts texts;
    if (files.empty()) return texts;
    std::vector<std::string> paths;
    paths.reserve(files.size());
    for (const FileURL& file : files) paths.push_back(file.path().str());
    Response response =
        runRequest({.command = "bodytext_batch", .maxBytes = maxBytes, .filePaths = std::move(paths)},
                   limits_.batchRun, stop);
    if (!response.items) return texts;
    std::unordered_map<std::string_view, std::string*> byPath;
    for (BatchItem& item : *response.items) byPath[item.path] = &item.text;
    for (const FileURL& file : files) {
        const auto found = byPath.find(file.path());
        // A file that is asked for twice finds its text taken, and in the result already.
        if (found != byPath.end()) texts.try_emplace(file.path(), std::move(*found->second));
    }
    return texts;
}

MailWorkerClient::Response MailWorkerClient::decodeResponse(std::string bytes) {
    const std::optional<std::string> shown = shownText(bytes);
    Response response;
    try {
        response = JsonReader().readTaking<Response>(std::move(bytes));
    } catch (const JsonError&) {
        throw WorkerError(Kind::invalidResponse,
                          shown && !shown->empty() ? *shown : "未能读取数据，因为它的格式不正确。");
    }
    if (!response.ok) throw WorkerError(Kind::workerFailed, response.error.value_or("未知错误"));
    return response;
}

} // namespace corvane
