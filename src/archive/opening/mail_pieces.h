// Reads archived mail in pieces, whatever its size. Each piece has a limit of its own: a place that doesn't
// answer costs that one and no thread of the caller. One thread at a time.
#pragma once

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>

#include "platform/files/layers/file_layer.h"
#include "platform/threads/time_limited_worker.h"

namespace corvane::archive {

class MailPieces {
  public:
    // `files` has to outlive reads that hung (platform::waitForAbandonedJobs).
    MailPieces(platform::FileLayer& files, std::stop_token stop,
               std::chrono::nanoseconds limit = platform::placeLimit);

    // Calls `onPiece` on this thread for each piece of a regular file, of at most 1 MiB; a link is refused.
    // Throws ArchiveAccessError when the file can't be read to its end, and OpeningCancelled after a stop.
    void read(const std::string& path, const std::function<void(std::string_view)>& onPiece);

  private:
    struct Reading;

    platform::FileLayer& files_;
    std::stop_token stop_;
    std::chrono::nanoseconds limit_;
    platform::TimeLimitedWorker worker_;
};

} // namespace corvane::archive
