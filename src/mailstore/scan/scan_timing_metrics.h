// What one scan did and how long it took, for a line that people read. The counters that the parallel lanes
// touch are atomic; the rest belongs to the scan's thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/stop_watch.h"

namespace corvane {

struct ScanTimingMetrics {
    platform::StopWatch sinceStart;
    double attachmentIndexSeconds = 0;
    double enumerationSeconds = 0;
    double readMessageSeconds = 0;
    double externalAttachmentLookupSeconds = 0;
    double envelopeIndexSeconds = 0;
    double pythonAttachmentSeconds = 0;
    double nativeAttachmentExtractSeconds = 0;
    std::int64_t indexedAttachmentFolders = 0;
    std::int64_t envelopeIndexedMessages = 0;
    std::atomic<std::int64_t> parsedMessages = 0;
    std::int64_t matchedMessages = 0;
    std::int64_t yearSkippedMessages = 0;
    std::atomic<std::int64_t> noAttachmentMessages = 0;
    std::int64_t markerSkippedMessages = 0;
    std::int64_t embeddedAttachmentCandidates = 0;
    std::int64_t externalAttachmentHits = 0;
    std::int64_t pythonAttachmentRequests = 0;

    // The line, its items joined by "｜". The arguments are numbers of messages; without `uiSeconds` the line
    // lacks its last item.
    [[nodiscard]] std::string summary(std::int64_t scanned, std::int64_t visited, std::int64_t matched,
                                      std::optional<double> uiSeconds = {}) const;
};

} // namespace corvane
