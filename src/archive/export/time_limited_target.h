// Another target, each step of which has a time limit: a place that doesn't answer ends the export and costs
// no thread of the caller. What hung goes on by itself and changes nothing any more. One thread; blocks.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <stop_token>
#include <string_view>

#include "archive/export/export_target.h"
#include "platform/files/layers/file_layer.h"
#include "platform/threads/time_limited_worker.h"

namespace corvane::archive {

// what() is the text for the user.
class TargetHung : public std::runtime_error {
  public:
    TargetHung()
      : std::runtime_error("目标位置无响应，没写完的内容可能还留在那里，下次导出到那里时会清理") {}
};

class TimeLimitedTarget final : public ExportTarget {
  public:
    // Makes the other target. It has to own all that it touches but the files. Each operation on these is a
    // step; `beginStep` is for steps that go past them, and throws after a stop.
    using Maker = std::function<std::unique_ptr<ExportTarget>(platform::FileLayer& files,
                                                              const std::function<void()>& beginStep)>;

    // Throws what the maker does. After a stop nothing is read back any more: an ECANCELED. `files` has to
    // outlive steps that hung (platform::waitForAbandonedJobs).
    TimeLimitedTarget(platform::FileLayer& files, Maker make, std::stop_token stop,
                      std::chrono::nanoseconds limit);
    TimeLimitedTarget(const TimeLimitedTarget&) = delete;
    TimeLimitedTarget& operator=(const TimeLimitedTarget&) = delete;
    ~TimeLimitedTarget() override;

    // Every function below throws TargetHung from then on.
    [[nodiscard]] bool hasHung() const { return work_ == nullptr; }

    [[nodiscard]] bool canDropMail() const override { return canDropMail_; }

    bool begin(const ExportedMail& mail) override;
    void write(std::string_view piece) override;
    void end() override;
    void drop() override;
    void finish() override;

  private:
    struct Work;

    void run(std::function<void(Work&)> step);

    std::stop_token stop_;
    std::chrono::nanoseconds limit_;
    platform::TimeLimitedWorker worker_;
    std::shared_ptr<Work> work_; // of the worker's jobs; null once one hung
    bool canDropMail_ = false;
};

} // namespace corvane::archive
