#include "locations/place_looks.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>

#include <fmt/format.h>

#include "archive/time_limited_worker.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"

namespace corvane {

namespace {

constexpr std::size_t mostAtATime = 8;

class LimitedLook final : public PlaceLook {
  public:
    LimitedLook(platform::FileLayer& files, archive::JobLimit& limit)
      : files_(files, limit)
      , limit_(limit) {}

    platform::FileLayer& files() override { return files_; }

    void beginStep() override { limit_.restart(); }

    [[nodiscard]] bool isGivenUp() const override { return limit_.isAbandoned(); }

  private:
    archive::AbandonableFileLayer files_;
    archive::JobLimit& limit_;
};

} // namespace

PlaceLooks::PlaceLooks(const platform::Platform& platform, platform::FileLayer& files, std::stop_token stop,
                       std::chrono::nanoseconds limit)
  : platform_(platform)
  , files_(files)
  , stop_(std::move(stop))
  , limit_(limit) {}

bool PlaceLooks::run(const std::string& place, std::function<void(PlaceLook&)> question) {
    if (stop_.stop_requested() || hasHung(place)) return false;
    archive::TimeLimitedWorker worker;
    const auto job = [&files = files_, question = std::move(question)](archive::JobLimit& limit) {
        if (limit.isAbandoned()) return;
        LimitedLook look(files, limit);
        try {
            question(look);
        } catch (const std::exception& error) {
            consoleLine(fmt::format("[HangTrace] look failed: {}", error.what()));
        }
    };
    if (worker.run(limit_, job, stop_)) return true;
    if (!stop_.stop_requested()) rememberHung(place);
    return false;
}

void PlaceLooks::callSideBySide(std::size_t count, const std::function<void(std::size_t)>& call) {
    std::atomic<std::size_t> next = 0;
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < std::min(count, mostAtATime); ++i) {
        threads.emplace_back([&] {
            for (std::size_t place = next++; place < count; place = next++) call(place);
        });
    }
}

bool PlaceLooks::hasHung(const std::string& place) {
    const text::MutexLock lock(mutex_);
    return std::ranges::any_of(hungPlaces_,
                               [&](const std::string& hung) { return platform::isAtOrBelow(place, hung); });
}

// With the disk that holds the place, unless the home lies on it: there one folder hangs by itself.
void PlaceLooks::rememberHung(const std::string& place) {
    consoleLine(fmt::format("[HangTrace] no answer from {}", place));
    const std::string home = platform_.realUserHomeDirectory();
    const auto volumes = platform_.mountedVolumes().value_or(std::vector<platform::Volume>());
    std::string disk;
    for (const platform::Volume& volume : volumes) {
        if (platform::isAtOrBelow(place, volume.path) && volume.path.size() > disk.size()) disk = volume.path;
    }
    const text::MutexLock lock(mutex_);
    hungPlaces_.push_back(place);
    if (!disk.empty() && !platform::isAtOrBelow(home, disk)) hungPlaces_.push_back(disk);
}

} // namespace corvane
