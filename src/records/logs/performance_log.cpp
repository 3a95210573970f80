#include "records/logs/performance_log.h"

#include <chrono>

#include <fmt/format.h>

#include "records/logs/append_line.h"
#include "records/logs/console_log.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

constexpr std::string_view fileName = "performance.log";

void appendMark(const CorvaneAppSupport& support, const std::string& line) {
    const bool isWritten =
        !support.createBaseDirectory() && appendLine(support.filePath(fileName), line, MissingFile::create);
    if (!isWritten) systemLogLine("[CorvanePerf] " + line);
}

void emptyLog(const CorvaneAppSupport& support) {
    if (const auto error = emptyLogFile(support, fileName))
        systemLogLine(fmt::format("[CorvanePerf] reset failed: {}", error.message()));
}

} // namespace

MailPerformanceLog::MailPerformanceLog(CorvaneAppSupport support)
  : support_(std::move(support))
  , thread_([this](const std::stop_token& stop) { run(stop); }) {}

MailPerformanceLog::~MailPerformanceLog() {
    thread_.request_stop();
    thread_.join();
}

void MailPerformanceLog::mark(std::string_view message) {
    enqueue(
        [this, line = fmt::format("{} {}", formatTimestampWithMilliseconds(std::chrono::system_clock::now()),
                                  message)] { appendMark(support_, line); });
}

void MailPerformanceLog::reset() {
    enqueue([this] { emptyLog(support_); });
}

void MailPerformanceLog::enqueue(std::function<void()> job) {
    {
        const text::MutexLock lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    wake_.notifyOne();
}

void MailPerformanceLog::run(const std::stop_token& stop) {
    text::MutexLock lock(mutex_);
    while (true) {
        wake_.wait(lock, stop, [this]() REQUIRES(mutex_) { return !jobs_.empty(); });
        if (jobs_.empty()) return;
        const auto job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}

} // namespace corvane
