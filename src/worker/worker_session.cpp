#include "worker/worker_session.h"

#include <chrono>
#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "platform/processes/child_process.h"
#include "platform/processes/timed_pipe.h"
#include "records/json/json_writer.h"
#include "records/texts/error_reasons.h"
#include "worker/worker_error.h"
#include "worker/worker_forms.h"

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = WorkerError::Kind;
using platform::PipeOutcome;

constexpr const char* closedDetail = "worker 已关闭";

// The worker can't be trusted with the next request any more.
class WorkerLost : public WorkerError {
  public:
    using WorkerError::WorkerError;
};

} // namespace

class MailWorkerClient::Session::Process {
  public:
    explicit Process(const MailWorkerClient& client)
      : limits_(client.limits_) {
        platform::Pipe input = platform::makePipe();
        platform::Pipe output = platform::makePipe();
        platform::ChildProcessOptions options{.executable = {},
                                              .arguments = client.scriptArguments(),
                                              .standardInput = input.readEnd.get(),
                                              .standardOutput = output.writeEnd.get(),
                                              // Nobody reads its log, and so it must not fill a pipe.
                                              .standardError = -1,
                                              .environment = {},
                                              .isUpkeep = client.isUpkeep_};
        options.executable = client.pythonRuntimeURL().path().str();
        options.arguments.emplace_back("--serve");
        worker_.emplace(options);
        input_ = std::move(input.writeEnd);
        output_ = std::move(output.readEnd);
    }

    [[nodiscard]] bool isRunning() { return worker_->isRunning(); }

    // The line of the answer. Throws WorkerLost after a time-out, a flood or a requested stop.
    std::string exchange(const std::string& line, const std::stop_token& stop) {
        const PipeOutcome sent = platform::sendAll(input_.get(), line, nextDeadline(), stop);
        // A worker that ended may have left an answer, or leaves none, which shows when it is read.
        if (sent != PipeOutcome::ended) requireInTime(sent);
        return readResponseLine(stop);
    }

    void end() {
        input_.reset();
        worker_->terminateAndWait();
    }

  private:
    [[nodiscard]] Clock::time_point nextDeadline() const { return Clock::now() + limits_.sessionRead; }

    void requireInTime(PipeOutcome outcome) const {
        if (outcome == PipeOutcome::stopped) throw WorkerLost(Kind::launchFailed, closedDetail);
        if (outcome == PipeOutcome::timedOut) {
            const auto seconds =
                std::chrono::duration_cast<std::chrono::seconds>(limits_.sessionRead).count();
            throw WorkerLost(
                Kind::workerFailed,
                fmt::format(
                    "worker 处理超时（{} 秒无响应），已重启。该附件可能内容异常或正文不在邮件文件内。",
                    seconds));
        }
    }

    std::string readResponseLine(const std::stop_token& stop) {
        std::size_t searched = 0;
        while (true) {
            const std::size_t end = received_.find('\n', searched);
            if (end != std::string::npos) return takeLine(end);
            searched = received_.size();
            if (static_cast<std::int64_t>(searched) > limits_.sessionAnswerBytes)
                throw WorkerLost(Kind::invalidResponse, answerTooLong);
            readMore(stop);
        }
    }

    void readMore(const std::stop_token& stop) {
        PipeOutcome outcome{};
        try {
            outcome = platform::receiveSome(output_.get(), received_, nextDeadline(), stop);
        } catch (const std::system_error& error) {
            throw WorkerError(Kind::invalidResponse,
                              "读取 worker 输出失败：" + systemErrorReason(error.code().value()));
        }
        requireInTime(outcome);
        if (outcome == PipeOutcome::ended) throw WorkerError(Kind::invalidResponse, "worker 没有返回数据");
    }

    // What came behind the line stays for the next request.
    std::string takeLine(std::size_t end) {
        std::string rest = received_.substr(end + 1);
        std::string line = std::exchange(received_, std::move(rest));
        line.resize(end);
        return line;
    }

    const Limits& limits_;
    std::optional<platform::ChildProcess> worker_;
    platform::FileDescriptor input_;
    platform::FileDescriptor output_;
    std::string received_;
};

MailWorkerClient::Session::Session(const MailWorkerClient& client)
  : client_(client)
  , process_(launch()) {}

MailWorkerClient::Session::~Session() {
    try {
        close();
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the process ends with its owner
    }
}

std::unique_ptr<MailWorkerClient::Session::Process> MailWorkerClient::Session::launch() const {
    try {
        return std::make_unique<Process>(client_);
    } catch (const std::system_error& error) {
        throw WorkerError(Kind::launchFailed, error.what());
    }
}

// Leaves the session closed when there is no new process to be had.
void MailWorkerClient::Session::relaunch() {
    process_->end();
    process_.reset();
    try {
        process_ = launch();
    } catch (const WorkerError&) { // NOLINT(bugprone-empty-catch): the error that led here is told
    }
}

MailWorkerClient::Response MailWorkerClient::Session::runRequest(const Request& request,
                                                                 const std::stop_token& stop) {
    const text::MutexLock lock(mutex_);
    if (process_ == nullptr || !process_->isRunning()) throw WorkerError(Kind::launchFailed, closedDetail);
    std::string line;
    try {
        line = process_->exchange(encodeJson(request) + '\n', stop);
    } catch (const WorkerLost& lost) {
        if (stop.stop_requested()) {
            process_->end();
            process_.reset();
        } else {
            relaunch();
        }
        throw WorkerError(lost.kind(), lost.detail());
    } catch (const std::system_error& error) {
        throw WorkerError(Kind::invalidResponse, error.what());
    }
    return decodeResponse(std::move(line));
}

std::vector<MailWorkerClient::Attachment>
MailWorkerClient::Session::attachments(const FileURL& file, std::int64_t maxBytes,
                                       const std::stop_token& stop) {
    Response response =
        runRequest({.command = "attachments", .filePath = file.path().str(), .maxBytes = maxBytes}, stop);
    return std::move(response.attachments).value_or(std::vector<Attachment>());
}

void MailWorkerClient::Session::close() {
    const text::MutexLock lock(mutex_);
    if (process_ == nullptr) return;
    const auto process = std::move(process_);
    try {
        if (process->isRunning()) process->exchange("{\"command\":\"shutdown\"}\n", {});
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): it is ended all the same
    }
    process->end();
}

} // namespace corvane
