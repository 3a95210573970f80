// Reads many files for a proof side by side, so that a disk always has the next ones to look for. A file that
// takes longer than the limit is given up with its place: nothing else of that place is read by the same
// object. Used by one thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include "archive/checks/proof_reading.h"
#include "platform/files/layers/file_layer.h"
#include "platform/threads/time_limited_worker.h"

namespace corvane::archive {

// One file to be read.
struct ProofRead {
    std::string root; // of an archive; empty for a copy in Mail's store
    std::string path; // below the root; whole for a copy
    BodyHashNeed needsBodyHash;
};

struct ProofReadResult {
    bool wasTried = false;              // false after a stop, and where the place doesn't answer
    std::optional<FileReading> reading; // absent: there is nothing to read any more
};

class ProofLanes {
  public:
    // `files` has to outlive reads that hung (platform::waitForAbandonedJobs).
    ProofLanes(platform::FileLayer& files, std::chrono::nanoseconds limit, std::size_t laneCount);

    // In the order of the reads, which is the order in which they are begun.
    std::vector<ProofReadResult> read(std::vector<ProofRead> reads, const std::stop_token& stop);

    // The roots of what hung; an empty one stands for Mail's store.
    [[nodiscard]] const std::set<std::string>& hungPlaces() const { return hungPlaces_; }

  private:
    struct Share;

    static void readShare(const std::shared_ptr<Share>& share, platform::JobLimit& limit);
    std::vector<std::shared_ptr<Share>> shared(std::vector<ProofRead> reads, const std::stop_token& stop);

    platform::FileLayer& files_;
    std::chrono::nanoseconds limit_;
    std::vector<std::unique_ptr<platform::TimeLimitedWorker>> workers_;
    std::set<std::string> hungPlaces_;
};

} // namespace corvane::archive
