#include "mailstore/scan/scan_timing_metrics.h"

#include <fmt/format.h>

namespace corvane {

std::string ScanTimingMetrics::summary(std::int64_t scanned, std::int64_t visited, std::int64_t matched,
                                       std::optional<double> uiSeconds) const {
    const double total = sinceStart.seconds();
    std::string line = fmt::format(
        "总 {:.2f}s｜已访问 {}｜已纳入 {}｜含附件 {}｜Mail索引 {:.2f}s/{} 封｜附件索引 {:.2f}s/{} "
        "目录｜枚举循环 {:.2f}s｜"
        "读 emlx {:.2f}s｜附件查表 {:.2f}s/{} 命中｜Python {} 次/{:.2f}s｜内置附件兜底 {:.2f}s｜无附件快跳 "
        "{}｜年份跳过 {}",
        total, visited, scanned, matched, envelopeIndexSeconds, envelopeIndexedMessages,
        attachmentIndexSeconds, indexedAttachmentFolders, enumerationSeconds, readMessageSeconds,
        externalAttachmentLookupSeconds, externalAttachmentHits, pythonAttachmentRequests,
        pythonAttachmentSeconds, nativeAttachmentExtractSeconds, markerSkippedMessages, yearSkippedMessages);
    if (uiSeconds) line += fmt::format("｜UI合并 {:.2f}s", *uiSeconds);
    return line;
}

} // namespace corvane
