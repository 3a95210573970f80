#include "listing/archive_capacity.h"

#include <cstdint>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "records/texts/formatters.h"

namespace corvane {

namespace {

constexpr double capacityMargin = 1.15;

} // namespace

std::int64_t estimatedArchiveBytes(double bytes) {
    return static_cast<std::int64_t>(bytes * capacityMargin);
}

std::optional<std::string> archiveCapacityShortfall(const MessageList& messages,
                                                    std::optional<std::int64_t> availableBytes) {
    double bytes = 0;
    for (const MailMessageRecord& message : messages) bytes += static_cast<double>(message.messageSize);
    const std::int64_t estimate = estimatedArchiveBytes(bytes);
    if (!availableBytes || *availableBytes >= estimate) return std::nullopt;
    return fmt::format(
        "目的地可用空间不足：归档这 {} 封约需 {}，当前仅剩 {}。请清理空间或更换归档位置后重试。\n\n（归档到 "
        "iCloud 时文件会先占用本地磁盘再上传，也请确认 iCloud 云端还有足够空间。）",
        messages.size(), formatByteCount(estimate), formatByteCount(*availableBytes));
}

} // namespace corvane
