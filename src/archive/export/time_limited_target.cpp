#include "archive/export/time_limited_target.h"

#include <cerrno>
#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include <sys/types.h>

#include "platform/files/layers/forwarding_file_layer.h"

namespace corvane::archive {

namespace {

using platform::FileLayer;
using platform::JobLimit;

constexpr std::chrono::seconds limitAfterStop{3};

// Gives each operation the whole time.
class StepFiles final : public platform::ForwardingFileLayer {
  public:
    StepFiles(FileLayer& files, JobLimit& limit, std::stop_token stop)
      : ForwardingFileLayer(files)
      , limit_(limit)
      , stop_(std::move(stop)) {}

    // To read back what was written may take minutes, and who stops doesn't want it.
    ssize_t read(int descriptor, void* bytes, std::size_t count) override {
        if (!stop_.stop_requested()) return ForwardingFileLayer::read(descriptor, bytes, count);
        errno = ECANCELED;
        return -1;
    }

  private:
    [[nodiscard]] bool permits() noexcept override {
        limit_.restart();
        return true;
    }

    JobLimit& limit_;
    std::stop_token stop_;
};

} // namespace

// All steps are jobs of one thread, whose limit is the same one for all of them.
struct TimeLimitedTarget::Work {
    void make(const Maker& maker) {
        openFiles.emplace(allFiles, *limit);
        files.emplace(*openFiles, *limit, stop);
        target = maker(*files, [this] {
            if (stop.stop_requested()) throw std::system_error(ECANCELED, std::generic_category());
            limit->restart();
        });
    }

    FileLayer& allFiles;
    std::stop_token stop{};
    JobLimit* limit = nullptr; // of the job at work
    std::optional<platform::AbandonableFileLayer> openFiles{};
    std::optional<StepFiles> files{};
    std::unique_ptr<ExportTarget> target{};
    std::exception_ptr failure{};
    bool isWanted = false; // the mail that was begun last
};

TimeLimitedTarget::TimeLimitedTarget(FileLayer& files, Maker make, std::stop_token stop,
                                     std::chrono::nanoseconds limit)
  : stop_(std::move(stop))
  , limit_(limit)
  , work_(std::make_shared<Work>(files, stop_)) {
    run([maker = std::move(make)](Work& work) { work.make(maker); });
    canDropMail_ = work_->target->canDropMail();
}

// What isn't finished is taken back, which touches the place, too.
TimeLimitedTarget::~TimeLimitedTarget() {
    if (!work_) return;
    const auto takeBack = [work = std::exchange(work_, nullptr)](JobLimit&) { work->target.reset(); };
    worker_.run(limit_, takeBack, stop_, limitAfterStop);
}

void TimeLimitedTarget::run(std::function<void(Work&)> step) {
    if (!work_) throw TargetHung();
    const bool hasEnded = worker_.run(
        limit_,
        [work = work_, step = std::move(step)](JobLimit& limit) {
            try {
                work->limit = &limit;
                step(*work);
            } catch (...) {
                work->failure = std::current_exception();
            }
        },
        stop_, limitAfterStop);
    if (!hasEnded) {
        work_.reset();
        throw TargetHung();
    }
    if (work_->failure) std::rethrow_exception(std::exchange(work_->failure, nullptr));
}

bool TimeLimitedTarget::begin(const ExportedMail& mail) {
    run([mail](Work& work) { work.isWanted = work.target->begin(mail); });
    return work_->isWanted;
}

void TimeLimitedTarget::write(std::string_view piece) {
    run([piece = std::string(piece)](Work& work) { work.target->write(piece); });
}

void TimeLimitedTarget::end() {
    run([](Work& work) { work.target->end(); });
}

void TimeLimitedTarget::drop() {
    run([](Work& work) { work.target->drop(); });
}

void TimeLimitedTarget::finish() {
    run([](Work& work) { work.target->finish(); });
}

} // namespace corvane::archive
