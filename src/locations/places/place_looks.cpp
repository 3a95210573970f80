#include "locations/places/place_looks.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <set>
#include <thread>

#include <fmt/format.h>

#include "platform/paths.h"
#include "platform/threads/time_limited_worker.h"
#include "records/logs/console_log.h"
#include "text/mutex.h"

namespace corvane {

namespace {

constexpr std::size_t mostAtATime = 8;

class LimitedLook final : public PlaceLook {
  public:
    LimitedLook(platform::FileLayer& files, platform::JobLimit& limit)
      : files_(files, limit)
      , limit_(limit) {}

    platform::FileLayer& files() override { return files_; }

    void beginStep() override { limit_.restart(); }

    [[nodiscard]] bool isGivenUp() const override { return limit_.isAbandoned(); }

  private:
    platform::AbandonableFileLayer files_;
    platform::JobLimit& limit_;
};

// The places at which looks of this process hang. Never destroyed: what hangs may outlive the statics of the
// program.
class HungPlaces {
  public:
    // One look, until it comes back.
    struct Look {
        bool hasEnded = false;
        std::vector<std::string> places;
    };

    static HungPlaces& ofProcess() {
        static auto* const places = new HungPlaces;
        return *places;
    }

    bool holds(const std::string& place) {
        const text::MutexLock lock(mutex_);
        return std::ranges::any_of(
            places_, [&](const std::string& hung) { return platform::isAtOrBelow(place, hung); });
    }

    void add(Look& look, std::vector<std::string> places) {
        const text::MutexLock lock(mutex_);
        if (look.hasEnded) return;
        places_.insert(places.begin(), places.end());
        look.places = std::move(places);
    }

    void end(Look& look) {
        const text::MutexLock lock(mutex_);
        look.hasEnded = true;
        for (const std::string& place : look.places) places_.erase(places_.find(place));
    }

  private:
    text::Mutex mutex_;
    std::multiset<std::string> places_ GUARDED_BY(mutex_);
};

} // namespace

PlaceLooks::PlaceLooks(const platform::Platform& platform, platform::FileLayer& files, std::stop_token stop,
                       std::chrono::nanoseconds limit)
  : platform_(platform)
  , files_(files)
  , stop_(std::move(stop))
  , limit_(limit) {}

bool PlaceLooks::run(const std::string& place, std::function<void(PlaceLook&)> question) {
    HungPlaces& hung = HungPlaces::ofProcess();
    if (stop_.stop_requested() || hung.holds(place)) return false;
    const auto state = std::make_shared<HungPlaces::Look>();
    // Goes with the job, also with one that is given up before it begins.
    const std::shared_ptr<void> end(nullptr, [&hung, state](void*) { hung.end(*state); });
    const auto job = [&files = files_, end, question = std::move(question)](platform::JobLimit& limit) {
        if (limit.isAbandoned()) return;
        LimitedLook look(files, limit);
        try {
            question(look);
        } catch (const std::exception& error) {
            consoleLine(fmt::format("[HangTrace] look failed: {}", error.what()));
        }
    };
    platform::TimeLimitedWorker worker;
    if (worker.run(limit_, job, stop_)) return true;
    if (!stop_.stop_requested()) hung.add(*state, hungWith(place));
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

// With the disk that holds the place, unless the home lies on it: there one folder hangs by itself.
std::vector<std::string> PlaceLooks::hungWith(const std::string& place) const {
    consoleLine(fmt::format("[HangTrace] no answer from {}", place));
    const std::string home = platform_.realUserHomeDirectory();
    std::string disk;
    for (const auto& volume : platform_.mountedVolumes().value_or(std::vector<platform::Volume>())) {
        if (platform::isAtOrBelow(place, volume.path) && volume.path.size() > disk.size()) disk = volume.path;
    }
    std::vector<std::string> hung{place};
    if (!disk.empty() && !platform::isAtOrBelow(home, disk)) hung.push_back(disk);
    return hung;
}

} // namespace corvane
