// "performance.log": one line a measured step, of one run of the program. Lines are written by a thread of
// the log, in order; the caller is never blocked and never sees an error.
#pragma once

#include <deque>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>

#include "records/stores/app_support.h"
#include "text/mutex.h"

namespace corvane {

class MailPerformanceLog {
  public:
    explicit MailPerformanceLog(CorvaneAppSupport support);
    MailPerformanceLog(const MailPerformanceLog&) = delete;
    MailPerformanceLog& operator=(const MailPerformanceLog&) = delete;

    // Writes what is still waiting.
    ~MailPerformanceLog();

    void mark(std::string_view message);

    // Empties the file: called once, at launch.
    void reset();

  private:
    void enqueue(std::function<void()> job);
    void run(const std::stop_token& stop);

    CorvaneAppSupport support_;
    text::Mutex mutex_;
    text::StoppableCondition wake_;
    std::deque<std::function<void()>> jobs_ GUARDED_BY(mutex_);
    std::jthread thread_; // last: it uses everything above
};

} // namespace corvane
