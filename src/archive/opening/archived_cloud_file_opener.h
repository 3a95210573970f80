// Brings an archived file back from the cloud where that is needed, and waits for it, but not for ever.
// Blocks, on a background thread; a place that doesn't answer costs one limit and leaves this object usable.
// One thread at a time.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <string>

#include "archive/opening/cloud_file.h"
#include "platform/platform.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archived/archive_records.h"

namespace corvane {

// The stop was requested first.
class OpeningCancelled : public std::runtime_error {
  public:
    OpeningCancelled()
      : std::runtime_error("已取消") {}
};

class ArchivedCloudFileOpener {
  public:
    // what() is the text for the user.
    class OpenError : public std::runtime_error {
      public:
        enum class Kind {
            unavailable, // it may be there, but can't be had now
            missing,
        };

        explicit OpenError(Kind kind);

        [[nodiscard]] Kind kind() const noexcept { return kind_; }

      private:
        Kind kind_;
    };

    struct Limits {
        std::chrono::milliseconds betweenLooks{300};
        int looks = 400;                                        // after the first one
        std::chrono::nanoseconds ofLook = platform::placeLimit; // a place that doesn't answer
    };

    // The platform has to outlive looks that hung (platform::waitForAbandonedJobs).
    explicit ArchivedCloudFileOpener(const platform::Platform& platform)
      : ArchivedCloudFileOpener(platform, Limits()) {}

    ArchivedCloudFileOpener(const platform::Platform& platform, const Limits& limits)
      : platform_(platform)
      , limits_(limits) {}

    // The file is on this machine.
    bool isAvailable(const std::string& path);

    // Neither the file nor a placeholder is there, and its folder answered.
    bool isGone(const std::string& path);

    // Returns when the file is on this machine. Throws OpenError and OpeningCancelled.
    void ensureLocal(const std::string& path, const std::stop_token& stop = {});

    // The same for an archived mail; returns its path. What its record names has to be a mail in its archive.
    std::string ensureLocal(const ArchivedEntry& entry, const std::stop_token& stop = {});

  private:
    using Look = std::function<archive::CloudFileState(const platform::Platform&)>;

    // Nullopt when the place doesn't answer.
    std::optional<archive::CloudFileState> stateBy(const Look& look, const std::stop_token& stop);
    void bringBack(const std::string& path, const Look& look, const std::stop_token& stop);

    const platform::Platform& platform_;
    Limits limits_;
    platform::TimeLimitedWorker worker_;
};

} // namespace corvane
